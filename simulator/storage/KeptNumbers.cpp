#include "simulator/storage/KeptNumbers.h"

#include <sstream>

#include "simulator/board/Faults.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"

namespace simulator {

bool within(const std::vector<int64_t>& values, const std::vector<Limits>& limits) {
    bool good = values.size() == limits.size();
    for (size_t i = 0; good && i < values.size(); ++i) {
        good = values[i] >= limits[i].least && values[i] <= limits[i].most;
    }
    return good;
}

std::vector<int64_t> factoryNumbers(const std::vector<Limits>& limits) {
    std::vector<int64_t> values;
    for (const Limits& number : limits) {
        values.push_back(number.factory);
    }
    return values;
}

namespace {

std::string textOf(const std::vector<int64_t>& values) {
    std::string text;
    for (const int64_t value : values) {
        text += (text.empty() ? "" : " ") + std::to_string(value);
    }
    return text;
}

}  // namespace

std::optional<std::vector<int64_t>> parseNumbers(const std::string& text, const std::vector<Limits>& limits) {
    std::vector<int64_t> values;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (!readNumber(word, &values.emplace_back())) {
            return std::nullopt;
        }
    }
    return within(values, limits) ? std::optional(values) : std::nullopt;
}

KeptNumbers::KeptNumbers(IniStore& store, const char* file, std::vector<Group> groups)
    : mStore(store), mFile(file), mGroups(std::move(groups)) {
    load();
}

int32_t KeptNumbers::load() {
    const std::lock_guard<std::mutex> changing(mChanging);
    IniContents contents;
    const int32_t status = mStore.read(mFile, &contents);
    auto values = std::make_shared<std::vector<Values>>();
    for (const Group& group : mGroups) {
        const auto found = contents.parameters.find(group.parameter);
        std::optional<Values> kept;
        if (found != contents.parameters.end()) {
            kept = parseNumbers(found->second.text, group.numbers);
            if (!kept) {
                contents.faults[found->second.line] = group.parameter + " is not " +
                                                      std::to_string(group.numbers.size()) +
                                                      " numbers within their limits: the factory's are used";
            }
            contents.parameters.erase(found);
        }
        values->push_back(kept ? *std::move(kept) : factoryNumbers(group.numbers));
    }
    for (const auto& [parameter, value] : contents.parameters) {
        contents.faults[value.line] = "there is no setting " + parameter;
    }
    std::vector<std::string> faults = contents.faultLines();
    if (status != kOk && status != kNotFound) {
        faults = {"cannot be read (status " + std::to_string(status) + "): the factory's are used"};
    }
    tellFaults(mStore.pathOf(mFile), faults);
    const std::lock_guard<std::mutex> lock(mMutex);
    mValues = std::move(values);
    return status != kOk && status != kNotFound ? status : faults.empty() ? kOk : kBadFile;
}

std::shared_ptr<const std::vector<KeptNumbers::Values>> KeptNumbers::get() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mValues;
}

int32_t KeptNumbers::change(size_t group, const std::function<void(Values&)>& edit) {
    const std::lock_guard<std::mutex> changing(mChanging);
    Values values = (*get())[group];
    edit(values);
    return setLocked({{group, std::move(values)}});
}

int32_t KeptNumbers::set(const std::vector<std::pair<size_t, Values>>& changes) {
    const std::lock_guard<std::mutex> changing(mChanging);
    return setLocked(changes);
}

/** Needs mChanging. */
int32_t KeptNumbers::setLocked(const std::vector<std::pair<size_t, Values>>& changes) {
    auto values = std::make_shared<std::vector<Values>>(*get());
    std::vector<std::pair<std::string, std::string>> texts;
    for (const auto& [group, numbers] : changes) {
        if (!within(numbers, mGroups[group].numbers)) {
            return kOutOfRange;
        }
        texts.emplace_back(mGroups[group].parameter, textOf(numbers));
        (*values)[group] = numbers;
    }
    const int32_t status = mStore.set(mFile, texts);
    if (status == kOk) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mValues = std::move(values);
    }
    return status;
}

std::string KeptNumbers::describe() const {
    const auto values = get();
    std::string text;
    for (size_t i = 0; i < mGroups.size(); ++i) {
        text += mGroups[i].parameter + " = " + textOf((*values)[i]) + "\n";
    }
    return text;
}

}  // namespace simulator
