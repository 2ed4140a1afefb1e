#include "simulator/storage/KeptNumbers.h"

#include <charconv>
#include <cstdio>
#include <sstream>

#include "simulator/board/Status.h"

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
        const char* const end = word.data() + word.size();
        const auto [rest, error] = std::from_chars(word.data(), end, values.emplace_back());
        if (error != std::errc() || rest != end) {
            return std::nullopt;
        }
    }
    return within(values, limits) ? std::optional(values) : std::nullopt;
}

KeptNumbers::KeptNumbers(IniStore& store, const char* file, std::vector<Group> groups)
    : mStore(store), mFile(file), mGroups(std::move(groups)) {
    load();
}

void KeptNumbers::load() {
    const std::lock_guard<std::mutex> changing(mChanging);
    std::vector<std::string> parameters;
    for (const Group& group : mGroups) {
        parameters.push_back(group.parameter);
    }
    std::vector<std::optional<std::string>> texts;
    const int32_t status = mStore.get(mFile, parameters, texts);
    if (status != kOk && status != kNotFound) {
        fprintf(stderr, "board: %s.ini cannot be read (status %d): the factory's numbers are used\n", mFile,
                status);
    }
    auto values = std::make_shared<std::vector<Values>>();
    for (size_t i = 0; i < mGroups.size(); ++i) {
        const Group& group = mGroups[i];
        std::optional<Values> kept = texts[i] ? parseNumbers(*texts[i], group.numbers) : std::nullopt;
        if (texts[i] && !kept) {
            fprintf(stderr,
                    "board: %s.ini: %s is not %zu numbers within their limits: the factory's are used\n",
                    mFile, group.parameter.c_str(), group.numbers.size());
        }
        values->push_back(kept ? *std::move(kept) : factoryNumbers(group.numbers));
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mValues = std::move(values);
}

std::shared_ptr<const std::vector<KeptNumbers::Values>> KeptNumbers::get() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mValues;
}

int32_t KeptNumbers::change(size_t group, const std::function<void(Values&)>& edit) {
    const std::lock_guard<std::mutex> changing(mChanging);
    auto values = std::make_shared<std::vector<Values>>(*get());
    Values& changed = (*values)[group];
    edit(changed);
    if (!within(changed, mGroups[group].numbers)) {
        return kOutOfRange;
    }
    const int32_t status = mStore.set(mFile, mGroups[group].parameter.c_str(), textOf(changed).c_str());
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
