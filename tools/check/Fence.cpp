#include "tools/check/Fence.h"

#include <signal.h>
#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <string>

#include "tools/check/Probe.h"

namespace check {

/**
 * The mapping of a fence, or of one whose call is over and whose slot nobody has needed since. The signal
 * handler reads it: all else is written before the base is.
 */
struct FenceSlot {
    std::atomic<char*> base{nullptr};
    std::atomic<bool> taken{false};
    std::atomic<bool> told{false};
    std::atomic<bool> over{false};
    const char* function;
    const char* name;
    char* bytes;
    size_t size;
    size_t total;  // bytes of the mapping
};

namespace {

/** How far before a buffer is looked for what does not belong there. */
constexpr ptrdiff_t kMargin = 4096;
/** How far behind a buffer somebody may reach and still be told from a wild pointer; whole pages of any size.
 */
constexpr size_t kFence = 64 << 10;
/** What lies around the bytes, to be found as it was. */
constexpr char kPaint = '\xA5';

/** The arguments of ten calls at once, and of many that are over. */
FenceSlot sSlots[512];
std::atomic<unsigned> sNext{0};
// Set once, at the first call.
constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGABRT, SIGILL, SIGFPE};
struct sigaction sBefore[std::size(kSignals)];

constexpr size_t roundedUp(size_t size, size_t to) {
    return (size + to - 1) / to * to;
}

void* mapped(void* at, size_t size) {
    return mmap(at, size, PROT_NONE,
                MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | (at == nullptr ? 0 : MAP_FIXED), -1, 0);
}

FenceSlot& takeSlot() {
    for (;;) {
        FenceSlot& slot = sSlots[sNext++ % std::size(sSlots)];
        if (!slot.taken.exchange(true)) {
            if (char* const old = slot.base.exchange(nullptr); old != nullptr) {
                munmap(old, slot.total);
            }
            return slot;
        }
    }
}

FenceSlot* slotAt(const char* address) {
    for (FenceSlot& slot : sSlots) {
        char* const base = slot.base.load();
        if (base != nullptr && address >= base && address < base + slot.total) {
            return &slot;
        }
    }
    return nullptr;
}

void onSignal(int number, siginfo_t* info, void*) {
    const auto* const address = static_cast<const char*>(info->si_addr);
    FenceSlot* const slot =
            info->si_code > 0 && (number == SIGSEGV || number == SIGBUS) ? slotAt(address) : nullptr;
    if (slot == nullptr) {
        // Not ours: it happens again, and ends the process as it would have.
        reportEnd();
        const int* const known = std::find(std::begin(kSignals), std::end(kSignals), number);
        sigaction(number, &sBefore[known - kSignals], nullptr);
        return;
    }
    if (!slot->told.exchange(true)) {
        const std::string name = slot->name;
        report(slot->function,
               slot->over ? "uses " + name + " after it has come back"
               : address < slot->bytes + slot->size
                       ? "writes to " + name + ", which it may only read"
                       : "reaches beyond the " + std::to_string(slot->size) + " bytes of " + name);
    }
    mprotect(slot->base.load(), slot->total, PROT_READ | PROT_WRITE);
}

/** Where paint begins in front of the bytes. */
char* painted(const FenceSlot& slot) {
    return slot.bytes - std::min(slot.bytes - slot.base.load(), kMargin);
}

bool isPainted(const char* from, const char* to) {
    return std::all_of(from, to, [](char c) { return c == kPaint; });
}

}  // namespace

Fence::Fence(const char* function, const char* name, const void* data, size_t size, size_t alignment,
             Access access)
    : mFunction(function),
      mName(name),
      mOrigin(access == Access::Write ? const_cast<void*>(data) : nullptr),
      mSize(size),
      mBytes(const_cast<void*>(data)) {
    const size_t space = roundedUp(size, alignment);
    const size_t pages = roundedUp(space + 1, kFence);
    void* const base = size > kLargest ? MAP_FAILED : mapped(nullptr, pages + kFence);
    if (base == MAP_FAILED || mprotect(base, pages, PROT_READ | PROT_WRITE) != 0) {
        return;
    }
    mSlot = &takeSlot();
    mSlot->function = function;
    mSlot->name = name;
    mSlot->bytes = static_cast<char*>(base) + pages - space;
    mSlot->size = size;
    mSlot->total = pages + kFence;
    mSlot->over = false;
    mSlot->told = false;
    mSlot->base = static_cast<char*>(base);
    mBytes = mSlot->bytes;
    std::fill(painted(*mSlot), static_cast<char*>(base) + pages, kPaint);
    if (data == nullptr) {
        std::fill_n(mSlot->bytes, size, '\0');
    } else {
        std::copy_n(static_cast<const char*>(data), size, mSlot->bytes);
    }
    if (access == Access::Read) {
        mprotect(base, pages, PROT_READ);
    }
}

Fence::~Fence() {
    if (mSlot == nullptr) {
        return;
    }
    const char* const end = mSlot->base.load() + mSlot->total - kFence;
    if (!isPainted(painted(*mSlot), mSlot->bytes)) {
        report(mFunction, std::string("writes before the beginning of ") + mName);
    }
    if (!isPainted(mSlot->bytes + mSize, end)) {
        report(mFunction, "reaches beyond the " + std::to_string(mSize) + " bytes of " + mName);
    }
    if (mOrigin != nullptr) {
        std::copy_n(mSlot->bytes, mSize, static_cast<char*>(mOrigin));
    }
    mSlot->over = true;
    mSlot->told = false;
    // Fresh pages in place of these: kept, they cost nothing.
    mapped(mSlot->base, mSlot->total);
    mSlot->taken = false;
}

void watchFences() {
    struct sigaction action = {};
    action.sa_sigaction = onSignal;
    action.sa_flags = static_cast<int>(SA_SIGINFO | SA_NODEFER);
    for (size_t i = 0; i < std::size(kSignals); ++i) {
        sigaction(kSignals[i], &action, &sBefore[i]);
    }
}

}  // namespace check
