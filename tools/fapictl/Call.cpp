#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "tools/fapictl/Arguments.h"
#include "tools/fapictl/Display.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Verbs.h"
#include "tools/fapictl/Watcher.h"

namespace fapictl {
namespace {

/** For methods that want an object of the caller's. */
constexpr const char* kObjectHint = "; fapictl watch registers a callback and shows its events";

/** The result that --out writes: the first text or bytes; the number of results when there is none. */
size_t findPayload(const Method& method) {
    size_t i = 0;
    while (i < method.results.size() && method.results[i].type->kind != Type::Kind::Text &&
           !method.results[i].type->isBytes()) {
        ++i;
    }
    return i;
}

void writePayload(const Context& context, const Json& value) {
    const std::string& path = context.options.out;
    std::ofstream file;
    if (path != "-") {
        file.open(path, std::ios::binary | std::ios::trunc);
    }
    std::ostream& out = path == "-" ? context.out : file;
    if (value.is_binary()) {
        const std::vector<uint8_t>& bytes = value.get_binary();
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    } else {
        out << value.get_ref<const std::string&>();
    }
    if (!out.flush()) {
        throw Failure(Exit::Output, "cannot write " + inQuotes(path) + ": " + std::strerror(errno));
    }
}

/** While it lives, events that come in are shown beside the results, on standard error. */
class Progress {
  public:
    explicit Progress(const Context& context) : mOutput(std::make_shared<Output>(&context.err)) {
        const sp<Watcher> watcher = new Watcher({}, [output = mOutput](const Event& event) {
            const std::lock_guard<std::mutex> lock(output->mutex);
            if (output->stream != nullptr) {
                *output->stream << eventLine(++output->shown, event) << std::endl;
            }
        });
        subscribe(findService(context, findInterface(context.package, "Manager")), watcher, nullptr);
    }
    ~Progress() {
        const std::lock_guard<std::mutex> lock(mOutput->mutex);
        mOutput->stream = nullptr;
    }
    Progress(const Progress&) = delete;

  private:
    struct Output {
        explicit Output(std::ostream* to) : stream(to) {}
        std::mutex mutex;
        std::ostream* stream;  // null once the call is over
        uint64_t shown = 0;
    };

    const std::shared_ptr<Output> mOutput;  // the watcher outlives us
};

void print(const Context& context, const Method& method, const Json& results, size_t payload) {
    const Options& options = context.options;
    Table table({"RESULT", "TYPE", "VALUE"});
    Json json = Json::object();
    for (size_t i = 0; i < method.results.size(); ++i) {
        const Field& result = method.results[i];
        if (i == payload) {
            const size_t size = results[i].is_binary() ? results[i].get_binary().size()
                                                       : results[i].get_ref<const std::string&>().size();
            table.row({result.label.name, result.type->name,
                       std::to_string(size) + " bytes written to " + escaped(options.out)});
            json[result.label.name] = {{"file", options.out}, {"size", size}};
        } else {
            addRows(table, result, results[i]);
            json[result.label.name] = forPrograms(*result.type, results[i]);
        }
    }
    if (!options.json.empty()) {
        printJson(context, json);
    } else if (!table.empty()) {
        table.print(context.out, !options.noLegend);
    } else if (!options.noLegend) {
        context.out << (method.oneway ? "sent; the method gives no answer\n"
                                      : "done; the method has no results\n");
    }
}

}  // namespace

sp<IBase> findService(const Context& context, const Interface& interface) {
    const Options& options = context.options;
    if (options.timeout) {
        waitFor({&interface}, options.instance, options.timeout);
    }
    sp<IBase> service = interface.find(options.instance);
    if (service == nullptr) {
        throw Failure(Exit::NotFound, interface.descriptor + "/" + options.instance + " is not registered" +
                                              (options.timeout ? " in time" : "; is the service running?"));
    }
    return service;
}

Exit call(const Context& context) {
    const Options& options = context.options;
    const Interface& interface = findInterface(context.package, options.words[0]);
    if (!interface.isService) {
        throw Failure(Exit::Usage, shortName(interface) + " is implemented by clients, it cannot be called");
    }
    const Method& method = findMethod(interface, options.words[1]);
    const bool takesObject =
            std::any_of(method.arguments.begin(), method.arguments.end(),
                        [](const Field& one) { return one.type->kind == Type::Kind::Interface; });
    Json arguments;
    try {
        arguments = bindArguments(method,
                                  std::vector<std::string>(options.words.begin() + 2, options.words.end()));
    } catch (const Failure& failure) {
        throw takesObject ? Failure(failure.code, std::string(failure.what()) + kObjectHint) : failure;
    }
    if (takesObject) {
        context.err << "fapictl: null registers nothing" << kObjectHint << '\n';
    }
    const std::optional<Progress> progress =
            options.progress ? std::optional<Progress>(std::in_place, context) : std::nullopt;
    return callAndPrint(context, interface, method, arguments);
}

Json callForResults(const Context& context, const Interface& interface, const Method& method,
                    const Json& arguments) {
    const sp<IBase> service = findService(context, interface);
    Reply reply = method.call(*service, arguments);
    if (!reply.failure.empty()) {
        throw Failure(Exit::Transport,
                      (reply.dead ? "the service died during the call: " : "the call failed: ") +
                              escaped(reply.failure));
    }
    return std::move(reply.results);
}

Exit callAndPrint(const Context& context, const Interface& interface, const Method& method,
                  const Json& arguments) {
    const Options& options = context.options;
    size_t payload = findPayload(method);
    if (!options.out.empty() && payload == method.results.size()) {
        context.err << "fapictl: --out has no effect: the method has no text or bytes among its results\n";
    } else if (options.out.empty()) {
        payload = method.results.size();
    }

    const Json results = callForResults(context, interface, method, arguments);
    int64_t status = 0;
    for (size_t i = 0; i < method.results.size(); ++i) {
        if (method.results[i].label.name == kStatusResult) {
            status = results[i].get<int64_t>();
        }
    }
    if (status != 0 && payload != method.results.size()) {
        context.err << "fapictl: " << escaped(options.out) << " is not written, since the method failed\n";
        payload = method.results.size();
    }
    if (payload != method.results.size()) {
        writePayload(context, results[payload]);
    }
    if (payload == method.results.size() || options.out != "-") {
        print(context, method, results, payload);
    }
    return status == 0 ? Exit::Success : Exit::Status;
}

}  // namespace fapictl
