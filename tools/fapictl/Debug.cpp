#include <cutils/native_handle.h>
#include <fcntl.h>
#include <hidl/HidlSupport.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>
#include <thread>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

/** A pipe whose other end the service writes to. */
class Page {
  public:
    Page() {
        if (pipe2(mEnds, O_CLOEXEC) != 0) {
            throw Failure(Exit::Transport, std::string("no pipe for the page: ") + std::strerror(errno));
        }
        mHandle.reset(native_handle_create(1, 0));
        if (mHandle == nullptr) {
            throw std::bad_alloc();
        }
        mHandle->data[0] = mEnds[1];
    }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;
    ~Page() {
        closeOwnEnd();
        close(mEnds[0]);
    }

    const native_handle_t* handle() const { return mHandle.get(); }
    /** From then on the page ends when the service closes its end. */
    void closeOwnEnd() {
        if (mEnds[1] >= 0) {
            close(mEnds[1]);
            mEnds[1] = -1;
        }
    }
    /** Reads to the end. */
    std::string text() const {
        std::string all;
        std::array<char, 4096> part;
        ssize_t got;
        while ((got = read(mEnds[0], part.data(), part.size())) > 0 || (got < 0 && errno == EINTR)) {
            all.append(part.data(), got > 0 ? static_cast<size_t>(got) : 0);
        }
        return all;
    }

  private:
    struct Delete {
        void operator()(native_handle_t* handle) const { native_handle_delete(handle); }
    };

    int mEnds[2];
    std::unique_ptr<native_handle_t, Delete> mHandle;
};

}  // namespace

std::string debugText(IBase& service, const std::vector<std::string>& words) {
    const android::hardware::hidl_vec<android::hardware::hidl_string> options(words.begin(), words.end());
    Page page;
    std::string text;
    // The service writes while the call lasts, and more than a pipe holds.
    std::thread reader([&] { text = page.text(); });
    const android::hardware::Return<void> asked = service.debug(page.handle(), options);
    page.closeOwnEnd();
    reader.join();
    if (!asked.isOk()) {
        throw Failure(Exit::Transport, "the service did not answer: " + asked.description());
    }
    return text;
}

Exit debug(const Context& context) {
    const std::vector<std::string>& words = context.options.words;
    const std::vector<std::string> passedOn(words.begin() + 1, words.end());
    bool found = false;
    bool written = false;  // pages are parted by an empty line
    for (const Interface* interface : selectInterfaces(context.package, words[0])) {
        if (!interface->isService) {
            if (isPattern(words[0])) {
                continue;
            }
            throw Failure(Exit::Usage,
                          shortName(*interface) + " is implemented by clients, it cannot be asked");
        }
        const sp<IBase> service = context.engine.find(*interface, targetOf(context));
        const std::string page = debugText(*service, passedOn);
        context.out << (written && !page.empty() ? "\n" : "") << page;
        written = written || !page.empty();
        if (page.empty()) {
            context.err << "fapictl: " << interface->descriptor << '/' << context.options.instance
                        << " writes nothing of its state\n";
        }
        found = true;
    }
    return found ? Exit::Success : Exit::NotFound;
}

}  // namespace fapictl
