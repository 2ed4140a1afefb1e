// Connections of processes that say what they like, in any order, to one that serves: hellos, calls, one-way
// messages, references handed over and released, descriptors, half messages and ends. Afterwards all that
// they had is gone, and an honest process's call is answered.

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "fuzz/Choices.h"
#include "fuzz/Input.h"
#include "fuzz/Reads.h"
#include "platform/socket/Encoder.h"
#include "platform/socket/Socket.h"
#include "platform/socket/Transport.h"

using namespace android;
using namespace android::hardware;

namespace {

/** An object whose methods read anything, and answer with a number, an object or much. */
class Object final : public BHwBinder {
    status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                        TransactCallback callback) override {
        int32_t number = 0;
        if (code == 0 && data.readInt32(&number) != OK) {
            return BAD_VALUE;
        }
        for (uint32_t i = 1; i < code % 8; ++i) {
            fuzz::read(data, static_cast<uint8_t>(code >> i));
        }
        const std::vector<uint8_t> much(code % 8 == 7 ? 100'000 : 1);
        size_t handle;
        reply->writeInt32(number + 1);
        if (code % 8 == 6) {
            reply->writeStrongBinder(new Object);
        } else if (code % 8 == 7) {
            reply->writeBuffer(much.data(), much.size(), &handle);
        }
        if ((flags & FLAG_ONEWAY) == 0) {
            callback(*reply);
        }
        return OK;
    }
};

struct Server {
    Server() {
        transport.pool().setMaxThreads(2, false);
        transport.pool().start();
        fuzz::require(transport.publish(new Object, &reference) == OK &&
                      honest.resolve(reference, &proxy) == OK);
        callHonestly();
        peers = transport.peerCount();
    }

    void callHonestly() {
        Parcel data;
        Parcel reply;
        int32_t number = 0;
        data.writeInt32(4711);
        fuzz::require(proxy->transact(0, data, &reply) == OK && reply.readInt32(&number) == OK &&
                      number == 4712);
    }

    Transport transport;
    Transport honest;
    ObjectReference reference;
    sp<IBinder> proxy;
    size_t peers;
};

Server& server() {
    static Server& sServer = *new Server;
    return sServer;
}

/** One of a few processes that never were. */
Endpoint endpointOf(uint8_t number) {
    return number % 8 == 7 ? server().transport.endpoint() : Endpoint{0xF0, static_cast<uint8_t>(number % 8)};
}

/** Any reference: the server's object, another one of its or of theirs. */
class References final : public ObjectExporter {
  public:
    explicit References(uint8_t choice) : mChoice(choice) {}
    status_t exportObject(const sp<IBinder>&, ObjectReference* reference) override {
        *reference = server().reference;
        if (mChoice % 4 != 0) {
            *reference = {endpointOf(mChoice), mChoice / 8U, 1};
        }
        return OK;
    }

  private:
    const uint8_t mChoice;
};

/** What a process sends, as it chooses; never waits, for who does not read gets nothing. */
void send(int fd, Gather gather) {
    while (gather.bytes > 0) {
        const ssize_t sent = sendSome(fd, &gather, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent <= 0) {
            return;
        }
    }
}

void sendMessage(int fd, fuzz::Choices& choices) {
    MessageHeader head{};
    head.kind = static_cast<MessageKind>(choices.byte() % 11);
    const uint8_t target = choices.byte();
    head.object = target < 128 ? server().reference.object : target;
    head.nonce = target < 192 ? server().reference.nonce : target;
    head.code = choices.byte();
    head.status = static_cast<int8_t>(choices.byte());
    const uint8_t content = choices.byte();
    const Endpoint body = endpointOf(content);
    if (head.kind == MessageKind::HelloCall || head.kind == MessageKind::HelloControl) {
        std::memcpy(&head.object, body.data(), 8);
        std::memcpy(&head.nonce, body.data() + 8, 8);
    }
    Parcel parcel;
    References references(choices.byte());
    static const std::vector<uint8_t> sMuch(200'000, 0x5A);
    size_t handle;
    parcel.writeInt32(content);
    for (int i = 0; i < content % 4; ++i) {
        parcel.writeStrongBinder(new Object);
    }
    if (content >= 64) {
        parcel.writeBuffer(sMuch.data(), content >= 240 ? sMuch.size() : content - 64U, &handle);
    }
    Encoder encoder;
    if (head.kind == MessageKind::HandOver || head.kind < MessageKind::Call) {
        encoder.encode(head, head.kind == MessageKind::HandOver ? &body : nullptr);
    } else if (encoder.encode(head, parcel, &references) != OK) {
        return;
    }
    std::vector<uint8_t> bytes;
    const Gather gather = encoder.gather();
    for (size_t i = 0; i < gather.count; ++i) {
        const auto* first = static_cast<const uint8_t*>(gather.vectors[i].iov_base);
        bytes.insert(bytes.end(), first, first + gather.vectors[i].iov_len);
    }
    const uint8_t lie = choices.byte();
    if (lie >= 128) {  // a byte of the head, of the body, or the end is missing
        const size_t place = lie < 192 ? lie % sizeof(head) : choices.byte();
        bytes[place % bytes.size()] = choices.byte();
    } else if (lie >= 96) {
        bytes.resize(bytes.size() * (lie - 96U) / 32);
    }
    const int descriptors[] = {STDIN_FILENO, STDIN_FILENO, STDIN_FILENO};
    iovec vector{bytes.data(), bytes.size()};
    if (!bytes.empty()) {
        send(fd, {&vector, 1, bytes.size(), descriptors, lie < 96 ? lie % 4U : 0});
    }
}

void discard(int fd) {
    uint8_t block[4096];
    while (receiveSome(fd, block, sizeof(block), MSG_DONTWAIT) > 0) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Server& served = server();
    {
        UniqueFd connections[4];
        fuzz::Choices choices(data, std::min<size_t>(size, 512));
        while (!choices.atEnd()) {
            const uint8_t action = choices.byte();
            UniqueFd& connection = connections[action % 4];
            if (!connection.ok()) {
                Credentials credentials;
                connection = connectTo(served.transport.endpoint(), &credentials);
                if (!connection.ok()) {
                    fuzz::require(errno == EAGAIN);  // it accepts them as fast as it can
                    break;
                }
            }
            switch (action / 4 % 8) {
                default:
                    sendMessage(connection.get(), choices);
                    break;
                case 4:
                    discard(connection.get());
                    break;
                case 5:
                    shutdown(connection.get(), choices.byte() % 3);
                    break;
                case 6:
                    connection.reset();
                    break;
                case 7: {
                    std::string bytes = choices.text(choices.byte());
                    iovec vector{bytes.data(), bytes.size()};
                    send(connection.get(), {&vector, 1, bytes.size()});
                    break;
                }
            }
        }
    }
    served.callHonestly();
    for (int i = 0; served.transport.peerCount() != served.peers; ++i) {
        fuzz::require(i < 20'000);
        usleep(100);
    }
    return 0;
}
