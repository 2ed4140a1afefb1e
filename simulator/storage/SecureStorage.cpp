#include "simulator/storage/SecureStorage.h"

#include <dirent.h>
#include <fcntl.h>
#include <sodium.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "simulator/board/Board.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"
#include "simulator/storage/Identity.h"
#include "simulator/storage/Sandbox.h"

namespace simulator {
namespace {

constexpr char kFolder[] = "secure";
constexpr char kSuffix[] = ".sealed";
constexpr char kSystemStorage[] = "system";
constexpr char kSystemFile[] = "system.key.sealed";
constexpr mode_t kMode = 0600;

// A file: the mark, a nonce, the encrypted key with its tag. Its name is authenticated too: a file that is
// renamed does not become another key.
constexpr char kMark[] = "SEALED1\n";
constexpr size_t kMarkBytes = sizeof(kMark) - 1;
constexpr size_t kNonceBytes = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr size_t kTagBytes = crypto_aead_xchacha20poly1305_ietf_ABYTES;
constexpr size_t kMaxFileBytes = kMarkBytes + kNonceBytes + SecureStorage::kMaxKeyBytes + kTagBytes;

/** Bytes that are wiped when they are no longer needed. */
template <size_t kBytes>
struct Secret {
    ~Secret() { sodium_memzero(bytes, sizeof(bytes)); }
    unsigned char bytes[kBytes] = {};
};

struct BoardKeys {
    Secret<crypto_aead_xchacha20poly1305_ietf_KEYBYTES> sealing;
    Secret<crypto_generichash_KEYBYTES> fingerprint;
};

int32_t deriveKeys(BoardKeys* keys) {
    Identity identity;
    if (sodium_init() < 0) {
        return kIoError;
    }
    if (const int32_t status = readIdentity(&identity); status != kOk) {
        return status;
    }
    Secret<crypto_kdf_KEYBYTES> master;
    crypto_generichash(master.bytes, sizeof(master.bytes),
                       reinterpret_cast<const unsigned char*>(identity.serial.data()), identity.serial.size(),
                       nullptr, 0);
    constexpr char kContext[crypto_kdf_CONTEXTBYTES + 1] = "secstore";
    crypto_kdf_derive_from_key(keys->sealing.bytes, sizeof(keys->sealing.bytes), 1, kContext, master.bytes);
    crypto_kdf_derive_from_key(keys->fingerprint.bytes, sizeof(keys->fingerprint.bytes), 2, kContext,
                               master.bytes);
    return kOk;
}

bool goodName(const char* name) {
    constexpr size_t kMost = SecureStorage::kMaxNameBytes;
    return isName({name, strnlen(name, kMost + 1)}, kMost, "_-");
}

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

/** The names of the sealed files in the folder, in order. */
std::vector<std::string> sealedFiles(int folder) {
    std::vector<std::string> names;
    const int own = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    Descriptor closes(own);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(own < 0 ? nullptr : fdopendir(own), closedir);
    if (entries == nullptr) {
        return names;
    }
    closes.release();
    while (const dirent* entry = readdir(entries.get())) {
        const std::string name = entry->d_name;
        const size_t suffix = strlen(kSuffix);
        if (name[0] != '.' && name.size() > suffix &&
            name.compare(name.size() - suffix, suffix, kSuffix) == 0) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string describeFile(const StateFolder& folder, const std::string& name, const BoardKeys& keys) {
    const std::string shown = name.substr(0, name.size() - strlen(kSuffix));
    std::string content;
    Secret<SecureStorage::kMaxKeyBytes> key;
    unsigned long long size = 0;
    if (folder.read(name, kMaxFileBytes, content) != kOk ||
        content.size() < kMarkBytes + kNonceBytes + kTagBytes || content.compare(0, kMarkBytes, kMark) != 0 ||
        crypto_aead_xchacha20poly1305_ietf_decrypt(
                key.bytes, &size, nullptr, bytesOf(content) + kMarkBytes + kNonceBytes,
                content.size() - kMarkBytes - kNonceBytes, bytesOf(name), name.size(),
                bytesOf(content) + kMarkBytes, keys.sealing.bytes) != 0) {
        return "key " + shown + " damaged, or sealed by another board\n";
    }
    // Keyed, so that it does not help to guess a short key.
    unsigned char print[crypto_generichash_BYTES_MIN];
    crypto_generichash(print, sizeof(print), key.bytes, size, keys.fingerprint.bytes,
                       sizeof(keys.fingerprint.bytes));
    char digits[17];
    sodium_bin2hex(digits, sizeof(digits), print, 8);
    return "key " + shown + " " + std::to_string(size) + " bytes, fingerprint " + digits + "\n";
}

}  // namespace

SecureStorage::SecureStorage() : mFolder(boardState(), kFolder) {}

int32_t SecureStorage::seal(const std::string& file, const unsigned char* key, size_t size, bool replace) {
    BoardKeys keys;
    if (const int32_t status = deriveKeys(&keys); status != kOk) {
        return status;
    }
    std::string content(kMarkBytes + kNonceBytes + size + kTagBytes, '\0');
    auto* const nonce = reinterpret_cast<unsigned char*>(content.data()) + kMarkBytes;
    memcpy(content.data(), kMark, kMarkBytes);
    randombytes_buf(nonce, kNonceBytes);
    crypto_aead_xchacha20poly1305_ietf_encrypt(nonce + kNonceBytes, nullptr, key, size, bytesOf(file),
                                               file.size(), nullptr, nonce, keys.sealing.bytes);

    const std::lock_guard<std::mutex> writing(mWriting);
    const Opened folder = mFolder.open();
    if (folder.status != kOk) {
        return folder.status;
    }
    const std::vector<std::string> names = sealedFiles(folder.file.get());
    if (std::binary_search(names.begin(), names.end(), file)) {
        if (!replace) {
            return kExists;
        }
    } else if (names.size() >= kMaxKeys) {
        return kFull;
    }
    return mFolder.replace(file, content, kMode);
}

int32_t SecureStorage::put(const char* storage, const char* name, const unsigned char* key, size_t size) {
    if (storage == nullptr || name == nullptr || key == nullptr || size == 0 || size > kMaxKeyBytes) {
        return kOutOfRange;
    }
    if (!goodName(storage) || !goodName(name)) {
        return kBadName;
    }
    if (strcmp(storage, kSystemStorage) == 0) {
        return kDenied;
    }
    return seal(std::string(storage) + "." + name + kSuffix, key, size, true);
}

int32_t SecureStorage::putSystemKey(const char* path, bool replace) {
    const Opened opened = boardFiles().openFile(path, O_RDONLY);
    if (opened.status != kOk) {
        return opened.status;
    }
    Secret<kMaxKeyBytes + 1> key;
    size_t size = 0;
    if (const int32_t status = readAt(opened.file.get(), key.bytes, sizeof(key.bytes), 0, &size);
        status != kOk) {
        return status;
    }
    if (size < kMinSystemKeyBytes || size > kMaxKeyBytes) {
        return kBadFile;
    }
    return seal(kSystemFile, key.bytes, size, replace);
}

std::string SecureStorage::describe() const {
    BoardKeys keys;
    const Opened folder = mFolder.open();
    if (folder.status != kOk || deriveKeys(&keys) != kOk) {
        return "keys: cannot be read\n";
    }
    std::string text;
    for (const std::string& name : sealedFiles(folder.file.get())) {
        text += describeFile(mFolder, name, keys);
    }
    return text;
}

int32_t customerHash(unsigned char* hash) {
    Identity identity;
    if (const int32_t status = readIdentity(&identity); status != kOk) {
        return status;
    }
    if (sodium_init() < 0) {
        return kIoError;
    }
    crypto_generichash(hash, kCustomerHashBytes, bytesOf(identity.customer), identity.customer.size(),
                       nullptr, 0);
    return kOk;
}

}  // namespace simulator
