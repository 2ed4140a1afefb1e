#include "platform/socket/MessageReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/fake/FailingAllocation.h"
#include "tests/platform/MessageBuilder.h"

namespace android::hardware {
namespace {

constexpr size_t kBlockBytes = 256;

/** A message whose last bytes tell which it is, as its code does. */
MessageBuilder numbered(uint32_t code, size_t size = 8) {
    return MessageBuilder()
            .lieInHead([=](MessageHeader& head) { head.code = code; })
            .buffer(std::string(size, static_cast<char>(code)));
}

/** The codes of the messages that are found when the stream comes in reads of so many bytes, the first apart;
 * below zero: of those that passed by. */
std::vector<int> feed(const std::vector<uint8_t>& stream, size_t first, size_t later,
                      const std::shared_ptr<NotedObjects>& objects) {
    MessageReader reader(kBlockBytes);
    const FailingAllocation refused(objects == nullptr ? 0 : 1);  // of a message longer than the block
    NotedObjects unused;
    ObjectSource& source = objects == nullptr ? unused : *objects;
    std::vector<int> codes;
    for (size_t at = 0, read = first; at < stream.size(); read = later) {
        for (const size_t end = std::min(at + read, stream.size()); at < end;) {
            size_t room = 0;
            uint8_t* const space = reader.space(&room);
            room = std::min(room, end - at);
            std::copy_n(&stream[at], room, space);
            reader.filled(room, source);
            at += room;
            MessageHeader head{};
            uint8_t* bytes = nullptr;
            const char* rule = nullptr;
            MessageReader::Found found;
            while ((found = reader.next(&head, &bytes, &rule, source)) != MessageReader::Found::Nothing) {
                if (found == MessageReader::Found::BrokenRule) {
                    return codes;
                }
                const auto code = static_cast<int>(head.code);
                const bool whole = found == MessageReader::Found::Message;
                codes.push_back(whole ? code : -code);
                EXPECT_TRUE(!whole || bytes[head.totalBytes - 1] == code) << code;
            }
        }
    }
    return codes;
}

TEST(MessageReader, MessagesAreFoundHoweverTheirBytesComeAndThoughOneHasNoMemory) {
    std::vector<uint8_t> stream;
    for (const MessageBuilder& message :
         {numbered(1), numbered(2).object(11), numbered(3, 1000).object(12).object(0).object(13), numbered(4),
          numbered(5, 104).object(14)}) {
        const std::vector<uint8_t> bytes = message.bytes();
        stream.insert(stream.end(), bytes.begin(), bytes.end());
    }
    const std::vector<int> all{1, 2, 3, 4, 5};
    const std::vector<int> allButOne{1, 2, -3, 4, 5};
    for (size_t cut = 1; cut <= stream.size(); ++cut) {
        for (const auto& [first, later] : {std::pair(cut, stream.size()), std::pair(cut, cut)}) {
            EXPECT_EQ(feed(stream, first, later, nullptr), all) << first << " " << later;
            const auto objects = std::make_shared<NotedObjects>();
            ASSERT_EQ(feed(stream, first, later, objects), allButOne) << first << " " << later;
            EXPECT_EQ(objects->dropped, (std::vector<uint64_t>{12, 13}));
        }
    }
    stream[stream.size() - 216] ^= 1;  // the magic of the last one
    EXPECT_EQ(feed(stream, 7, 7, nullptr), (std::vector<int>{1, 2, 3, 4}));
}

}  // namespace
}  // namespace android::hardware
