#include "tools/fapictl/Symbols.h"

#include <cxxabi.h>
#include <elf.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>

#include "tools/fapictl/Names.h"

namespace fapictl {
namespace {

struct Symbol {
    std::string name;
    bool exported;
};

/** A part of a file, null when the file is too short for it. */
template <typename T>
const T* partAt(const std::string& file, uint64_t offset, uint64_t count = 1) {
    const bool fits = offset <= file.size() && count <= (file.size() - offset) / sizeof(T);
    return fits ? reinterpret_cast<const T*>(file.data() + offset) : nullptr;
}

/** The functions of a library for this machine's kind of processor; none if it is no such file. */
std::vector<Symbol> functionsOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    const std::string file{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    const auto* const header = partAt<Elf64_Ehdr>(file, 0);
    if (header == nullptr || std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0 ||
        header->e_ident[EI_CLASS] != ELFCLASS64) {
        return {};
    }
    std::vector<Symbol> found;
    const auto* const sections = partAt<Elf64_Shdr>(file, header->e_shoff, header->e_shnum);
    for (size_t i = 0; sections != nullptr && i < header->e_shnum; ++i) {
        const Elf64_Shdr& table = sections[i];
        if ((table.sh_type != SHT_DYNSYM && table.sh_type != SHT_SYMTAB) ||
            table.sh_link >= header->e_shnum) {
            continue;
        }
        const Elf64_Shdr& names = sections[table.sh_link];
        const size_t count = table.sh_size / sizeof(Elf64_Sym);
        const auto* const symbols = partAt<Elf64_Sym>(file, table.sh_offset, count);
        const auto* const text = partAt<char>(file, names.sh_offset, names.sh_size);
        for (size_t j = 0; symbols != nullptr && text != nullptr && j < count; ++j) {
            const Elf64_Sym& symbol = symbols[j];
            if (ELF64_ST_TYPE(symbol.st_info) == STT_FUNC && symbol.st_shndx != SHN_UNDEF &&
                symbol.st_name < names.sh_size) {
                const size_t length = strnlen(text + symbol.st_name, names.sh_size - symbol.st_name);
                found.push_back({std::string(text + symbol.st_name, length), table.sh_type == SHT_DYNSYM});
            }
        }
    }
    return found;
}

std::string withoutParameters(const std::string& name) {
    return name.substr(0, name.find('('));
}

}  // namespace

std::string demangled(const std::string& name) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> text(
            abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), std::free);
    return status == 0 ? text.get() : name;
}

std::string nearMiss(const std::string& mangled, const std::vector<std::string>& libraries) {
    const std::string wanted = withoutParameters(demangled(mangled));
    std::string misspelt;
    for (const std::string& library : libraries) {
        const std::string file = library.substr(library.rfind('/') + 1);
        for (const Symbol& symbol : functionsOf(library)) {
            const std::string shown = demangled(symbol.name);
            const std::string name = withoutParameters(shown);
            if (symbol.name == mangled && !symbol.exported) {
                return "it is in " + file + ", but hidden";
            }
            if (symbol.name == wanted) {
                return file + " has it with C linkage (extern \"C\")";
            }
            if (name == wanted && symbol.name != mangled) {
                return file + " has it with other parameters: " + shown;
            }
            const std::string inside = "::" + wanted;
            if (name.size() > inside.size() &&
                name.compare(name.size() - inside.size(), std::string::npos, inside) == 0) {
                return file + " has it in a namespace: " + shown;
            }
            if (misspelt.empty() && symbol.exported && name != wanted && editDistance(name, wanted) <= 2) {
                misspelt = file + " has " + shown;
            }
        }
    }
    return misspelt;
}

}  // namespace fapictl
