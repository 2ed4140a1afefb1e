#pragma once

// Transports of one process stand for processes: they share nothing but sockets and, as one pid, the budget
// of a process. What needs real ones (kill, stop, other users, limits) is in ProcessTest.cpp.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/socket/Limits.h"
#include "platform/socket/Transport.h"
#include "tests/support/Eventually.h"

namespace android::hardware {

using namespace std::chrono_literals;

enum Method : uint32_t { kAdd = 1, kKeep, kBlob, kBlock, kNote, kSelf, kSum, kReturn, kPolicy, kNest };

/** An object with methods of every shape that the transport tells apart. */
class Probe : public BHwBinder {
  public:
    explicit Probe(std::atomic<int>* alive = nullptr) : mAlive(alive) {
        if (mAlive != nullptr) {
            ++*mAlive;
        }
    }
    ~Probe() override {
        if (onEnd) {
            onEnd();
        }
        if (mAlive != nullptr) {
            --*mAlive;
        }
    }

    status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                        TransactCallback callback) override {
        int32_t number = 0;
        status_t status = code == kSelf || code == kKeep || code == kReturn ? OK : data.readInt32(&number);
        if (status != OK) {
            return status;
        }
        std::vector<uint8_t> blob;
        size_t handle = 0;
        switch (code) {
            case kAdd:
                reply->writeInt32(number + 1);
                break;
            case kKeep: {
                sp<IBinder> object;
                status = data.readNullableStrongBinder(&object);
                const std::lock_guard<std::mutex> lock(mLock);
                kept = object;
                reply->writeInt32(object == nullptr ? 0 : 1);
                break;
            }
            case kNest: {
                sp<IBinder> back;
                int32_t deeper = 0;
                status = data.readNullableStrongBinder(&back);
                if (status == OK && number > 1) {
                    status = nest(back, number - 1, this, &deeper);
                }
                reply->writeInt32(deeper + 1);
                break;
            }
            case kBlob:
                blob.assign(static_cast<size_t>(number), 0xA5);
                reply->writeBuffer(blob.data(), blob.size(), &handle);
                break;
            case kBlock: {
                std::unique_lock<std::mutex> lock(mLock);
                ++blocked;
                mChanged.notify_all();
                mChanged.wait(lock, [this] { return released; });
                break;
            }
            case kNote: {
                const std::lock_guard<std::mutex> lock(mLock);
                notes.push_back(number);
                break;
            }
            case kPolicy: {
                const std::lock_guard<std::mutex> lock(mLock);
                notes.push_back(sched_getscheduler(0));
                break;
            }
            case kSelf:
                reply->writeStrongBinder(new Probe(mAlive));
                break;
            case kReturn: {
                sp<IBinder> object;
                status = data.readNullableStrongBinder(&object);
                reply->writeStrongBinder(object);
                break;
            }
            case kSum: {
                const void* bytes = nullptr;
                status = data.readBuffer(static_cast<size_t>(number), &handle, &bytes);
                if (status == OK) {
                    reply->writeInt32(static_cast<const uint8_t*>(bytes)[number - 1]);
                }
                break;
            }
            default:
                return UNKNOWN_TRANSACTION;
        }
        if (status == OK && (flags & FLAG_ONEWAY) == 0) {
            callback(*reply);
        }
        return status;
    }

    /** Calls an object that calls back, and so on: so many calls inside each other. */
    static status_t nest(const sp<IBinder>& object, int32_t depth, const sp<IBinder>& back,
                         int32_t* reached) {
        Parcel data;
        Parcel reply;
        data.writeInt32(depth);
        data.writeStrongBinder(back);
        const status_t status = object->transact(kNest, data, &reply);
        return status == OK ? reply.readInt32(reached) : status;
    }

    void release() {
        const std::lock_guard<std::mutex> lock(mLock);
        released = true;
        mChanged.notify_all();
    }
    sp<IBinder> takeKept() {
        const std::lock_guard<std::mutex> lock(mLock);
        return std::exchange(kept, nullptr);
    }
    std::vector<int> noted() {
        const std::lock_guard<std::mutex> lock(mLock);
        return notes;
    }

    std::function<void()> onEnd;  // set before others get the object
    sp<IBinder> kept;
    std::atomic<int> blocked{0};
    bool released = false;
    std::vector<int> notes;

  private:
    std::atomic<int>* const mAlive;
    std::mutex mLock;
    std::condition_variable mChanged;
};

class Deaths : public IBinder::DeathRecipient {
  public:
    explicit Deaths(std::function<void()> then = [] {}) : mThen(std::move(then)) {}
    void binderDied(const wp<IBinder>&) override {
        ++count;
        mThen();
    }
    std::atomic<int> count{0};

  private:
    const std::function<void()> mThen;
};

inline status_t call(const sp<IBinder>& object, uint32_t code, int32_t argument, int32_t* result = nullptr,
                     uint32_t flags = 0) {
    Parcel data;
    Parcel reply;
    data.writeInt32(argument);
    const status_t status = object->transact(code, data, &reply, flags);
    return status == OK && result != nullptr ? reply.readInt32(result) : status;
}

inline status_t pass(const sp<IBinder>& object, const sp<IBinder>& argument) {
    Parcel data;
    Parcel reply;
    data.writeStrongBinder(argument);
    return object->transact(kKeep, data, &reply);
}

/** Gets a new object of the server's. */
inline sp<IBinder> getChild(const sp<IBinder>& object) {
    Parcel data;
    Parcel reply;
    sp<IBinder> child;
    EXPECT_EQ(OK, object->transact(kSelf, data, &reply));
    EXPECT_EQ(OK, reply.readNullableStrongBinder(&child));
    return child;
}

/** Another process: a transport with pool threads and an object that it publishes. */
struct Partner {
    explicit Partner(size_t threads = 2) {
        transport.pool().setMaxThreads(threads, false);
        transport.pool().start();
        EXPECT_EQ(OK, transport.publish(object, &reference));
    }
    ~Partner() { object->release(); }

    const sp<Probe> object = new Probe;
    ObjectReference reference;
    std::vector<sp<IBinder>> held;  // given up by its death
    Transport transport;
};

class TransportTest : public testing::Test {
  protected:
    TransportTest() {
        alarm(60);  // a call that hangs ends the program
        server.pool().setMaxThreads(6, false);
        server.pool().start();
        EXPECT_EQ(OK, server.publish(object, &reference));
    }
    ~TransportTest() override {
        object->release();
        alarm(0);
    }

    sp<IBinder> objectFor(Transport& client) {
        client.pool().start();
        sp<IBinder> proxy;
        EXPECT_EQ(OK, client.resolve(reference, &proxy));
        return proxy;
    }

    /** An object of the server's own, under a maker that hands out children; alive counts both. */
    ObjectReference publishMaker() {
        ObjectReference made;
        EXPECT_EQ(OK, server.publish(new Probe(&alive), &made));
        return made;
    }
    static sp<IBinder> get(Transport& client, const ObjectReference& from) {
        sp<IBinder> proxy;
        EXPECT_EQ(OK, client.resolve(from, &proxy));
        return proxy;
    }

    std::atomic<int> alive{0};  // outlives the objects that the server keeps
    const sp<Probe> object = new Probe;
    ObjectReference reference;
    Transport server;
};

}  // namespace android::hardware
