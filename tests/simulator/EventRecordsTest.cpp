// Records are written alike for the board and for whoever posts an event: the same rows are read by both.

#include <gtest/gtest.h>

#include "simulator/board/EventRecords.h"
#include "tests/cases/Method.h"
#include "tests/cases/Rows.h"
#include "tools/fapictl/Events.h"

namespace simulator {
namespace {

TEST(EventRecords, AreReadAsThoseOfAPostedEvent) {
    for (const cases::Row& row : cases::rowsOf(RECORD_CASES)) {
        Module::Payload payload;
        std::string text = "refused";
        if (readEventRecords(cases::split(cases::withoutSingleQuotes(row.input)).at(0), &payload).empty()) {
            fapictl::Event event;
            for (size_t i = 0; i < event.records.size(); ++i) {
                const auto& object = payload.objects[i];
                event.records[i] = {object.u32Value, object.strValue, object.vecValue};
            }
            text = fapictl::recordsText(event);
        }
        EXPECT_EQ(text, row.expected) << row.place;
    }
}

}  // namespace
}  // namespace simulator
