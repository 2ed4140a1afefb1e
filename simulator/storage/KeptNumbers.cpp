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
    auto values = std::make_shared<std::vector<Values>>();
    for (const Group& group : mGroups) {
        values->push_back(factoryNumbers(group.numbers));
    }
    mValues = std::move(values);
    load();
}

int32_t KeptNumbers::load() {
    const std::lock_guard<std::mutex> changing(mChanging);
    return loadLocked();
}

/** Needs mChanging. */
int32_t KeptNumbers::loadLocked() {
    IniContents contents;
    const int32_t status = mStore.read(mFile, &contents);
    mRead = status == kOk || status == kNotFound;
    if (!mRead) {
        tellFaults(mStore.pathOf(mFile), {"cannot be read (status " + std::to_string(status) + ")"});
        return status;
    }
    auto values = std::make_shared<std::vector<Values>>();
    for (const Group& group : mGroups) {
        const auto found = contents.parameters.find(group.parameter);
        std::optional<Values> kept;
        if (found != contents.parameters.end()) {
            const IniContents::Value& value = found->second;
            kept = parseNumbers(value.text, group.numbers);
            if (!kept) {
                contents.faults[value.line] = group.parameter + " is \"" + value.text + "\", not " +
                                              std::to_string(group.numbers.size()) +
                                              " numbers within their limits: the factory's are used";
            } else if (value.times > 1) {
                contents.faults[value.line] =
                        group.parameter + " is not given for the first time: this counts";
            }
            contents.parameters.erase(found);
        }
        values->push_back(kept ? *std::move(kept) : factoryNumbers(group.numbers));
    }
    for (const auto& [parameter, value] : contents.parameters) {
        contents.faults[value.line] = "there is no setting " + parameter;
    }
    tellFaults(mStore.pathOf(mFile), contents.faultLines());
    const std::lock_guard<std::mutex> lock(mMutex);
    mValues = std::move(values);
    return contents.faults.empty() ? kOk : kBadFile;
}

/** What a change needs first: to know what is in the file. Needs mChanging. */
int32_t KeptNumbers::readFirst() {
    const int32_t status = mRead ? kOk : loadLocked();
    return mRead ? kOk : status;
}

std::shared_ptr<const std::vector<KeptNumbers::Values>> KeptNumbers::get() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mValues;
}

int32_t KeptNumbers::change(size_t group, const std::function<void(Values&)>& edit) {
    const std::lock_guard<std::mutex> changing(mChanging);
    if (const int32_t status = readFirst(); status != kOk) {
        return status;
    }
    Values values = (*get())[group];
    edit(values);
    return setLocked({{group, std::move(values)}});
}

int32_t KeptNumbers::set(const std::vector<std::pair<size_t, Values>>& changes) {
    const std::lock_guard<std::mutex> changing(mChanging);
    const int32_t status = readFirst();
    return status == kOk ? setLocked(changes) : status;
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
