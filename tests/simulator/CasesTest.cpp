// clang-format off
// Runs the files cases/*.cases against the simulated board: each section is a test, with a state folder and a
// board process of its own.
//
//     == A promise, the test's title
//     system read_reg 1 255               -> 0 0      what `fapictl call` takes, and the results
//     aud adv_set_volume { 9 1 | 0 101 }  -> -102     once for each alternative; blanks around { | }
//     prphrl control_gpio 63 1                        without an answer: -> 0
//     board status                        => -5       once it is so, within 10 s
//     system upgrade_fw 1 /fw &           ->          in the background; `done -> 0` waits for its answer
//     order gpio 5 1                                  command 0 of the board
//     state prphrl ~ gpio 5 high                      ~ contains, !~ does not; what the board shows of it
//     state aud as BEFORE                             from here on $BEFORE stands for the answer
//     events -> 0x100003 5 1; 0x100004 9,ir 1         all since the last time: TYPE NUMBER[,TEXT][:BYTES]...
//     says ~ there is no such line                    standard error since the last time, within 10 s
//     restart NAME=VALUE ...                          SIGKILL; another process with that in its environment
//     file files/a <- "text\n" ("x")*1023             paths are those of the state folder; @9<- in the middle
//     file files/a -> 'text\n(x)*1023'                or absent
//     $ ls files -> a                                 a shell's output, in the state folder
//     needs test $(id -u) = 0                         or the test is skipped
//     tty ttyS0 <- "help\r"                           a terminal on uart/ttyS0, open until the end
//     tty ttyS0 -> "ok\r\n"                           so many bytes; with ~, until they have come
//     picture 1 -> 0,0=ff8000 9,9=000000              X,Y=RRGGBB of the captured layer
//     each PATH STATUS                                the indented steps for each of the rows, whose cells
//         system check_file $PATH -> $STATUS          stand for $PATH and $STATUS
//     | a     | 0
//     | none  | -101
//
// # begins a comment's line, and a line that ends in \ goes on with the next. $STATE is the state folder,
// $MAKE the program images.py, $PROBE the board's, $PID a number of this run. `module`, `board` and other
// words are commands of the board's process, see probe.cpp.
// clang-format on

#include <fcntl.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <memory>

#include "tests/cases/Method.h"
#include "tests/simulator/BoardProcess.h"
#include "tests/simulator/Picture.h"
#include "tests/simulator/Support.h"
#include "tests/support/Eventually.h"
#include "tools/fapictl/Text.h"

namespace {

struct Line {
    int number;
    std::string text;
};

std::string trimmed(const std::string& text) {
    const size_t begin = text.find_first_not_of(" \n");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \n") + 1 - begin);
}

/** The place of the first of these words outside of quotes and braces, and the word; npos without one. */
std::pair<size_t, std::string> findWord(const std::string& text, const std::vector<std::string>& words,
                                        size_t from = 0) {
    int depth = 0;
    bool quoted = false;
    for (size_t i = from; i < text.size(); ++i) {
        if (quoted || text[i] == '"') {
            quoted = text[i] == '"' ? !quoted : (i += text[i] == '\\', true);
            continue;
        }
        for (const std::string& word : words) {
            if (depth == 0 && text.compare(i, word.size() + 2, " " + word + " ") == 0) {
                return {i, word};
            }
        }
        depth += text.compare(i, 3, " { ") == 0;
        depth -= text.compare(i, 3, " } ") == 0;
    }
    return {std::string::npos, ""};
}

/** What stands between the unquoted bars. */
std::vector<std::string> cells(const std::string& text) {
    std::vector<std::string> all;
    const std::string padded = " " + text + " ";
    for (size_t begin = 0; begin != std::string::npos;) {
        const size_t bar = findWord(padded, {"|"}, begin).first;
        all.push_back(trimmed(padded.substr(begin, bar - begin)));
        begin = bar == std::string::npos ? bar : bar + 2;
    }
    return all;
}

/** The line with each of its alternatives. */
std::vector<std::string> alternatives(const std::string& text) {
    const size_t open = findWord(text, {"{"}).first;
    if (open == std::string::npos) {
        return {text};
    }
    const size_t close = findWord(text + " ", {"}"}, open + 2).first;
    std::vector<std::string> all;
    for (const std::string& one : cells(text.substr(open + 2, close - open - 2))) {
        for (const std::string& more :
             alternatives(text.substr(0, open + 1) + one + text.substr(close + 2))) {
            all.push_back(more);
        }
    }
    return all;
}

/** The words' bytes one behind the other. */
std::string joined(const std::string& text) {
    std::string all;
    for (const std::string& word : cases::split(text)) {
        all += word;
    }
    return all;
}

class Section : public testing::Test {
  public:
    Section(std::string file, std::vector<Line> lines) : mFile(std::move(file)), mLines(std::move(lines)) {}

  protected:
    void TestBody() override {
        mNames = {{"STATE", mState.path()},
                  {"MAKE", "python3 -IS " CASES "/../images.py"},
                  {"PROBE", PROBE},
                  {"PID", std::to_string(getpid())}};
        for (size_t i = 0; i < mLines.size(); ++i) {
            if (mLines[i].text.compare(0, 6, "needs ") == 0) {
                if (!shell(mLines[i].text.substr(6)).empty()) {
                    GTEST_SKIP() << mLines[i].text;
                }
                continue;
            }
            if (mLines[i].text.compare(0, 5, "each ") != 0) {
                perform(mLines[i]);
                continue;
            }
            const std::vector<std::string> columns = cases::split(mLines[i].text.substr(5));
            std::vector<Line> body;
            while (i + 1 < mLines.size() && mLines[i + 1].text[0] == ' ') {
                body.push_back(mLines[++i]);
            }
            while (i + 1 < mLines.size() && mLines[i + 1].text.compare(0, 1, "|") == 0) {
                SCOPED_TRACE("the row at " + place(mLines[++i]));
                for (const std::string& row : alternatives(substituted(mLines[i].text.substr(1)))) {
                    const std::vector<std::string> cell = cells(row);
                    for (size_t column = 0; column < columns.size(); ++column) {
                        mNames[columns[column]] = cell.at(column);
                    }
                    std::for_each(body.begin(), body.end(), [this](const Line& line) { perform(line); });
                }
            }
        }
        mTerminals.clear();
        if (mBoard != nullptr && mBoard->finish() != 0 && !mEnded) {
            ADD_FAILURE() << mFile << ": the board's process ended badly\n" << heard();
        }
    }

  private:
    struct Terminal {
        explicit Terminal(const std::string& path) : fd(open(path.c_str(), O_RDWR | O_NOCTTY)) {
            EXPECT_GE(fd, 0) << path;
        }
        ~Terminal() { close(fd); }
        const int fd;
    };

    std::string place(const Line& line) const { return mFile + ":" + std::to_string(line.number); }

    std::string substituted(std::string text) const {
        for (auto name = mNames.rbegin(); name != mNames.rend();
             ++name) {  // longer ones of one beginning first
            for (size_t at = 0; (at = text.find("$" + name->first, at)) != std::string::npos;
                 at += name->second.size()) {
                text.replace(at, name->first.size() + 1, name->second);
            }
        }
        return text;
    }

    void perform(const Line& line) {
        for (const std::string& step : alternatives(trimmed(substituted(line.text)))) {
            try {
                check(line, step);
            } catch (const std::exception& failure) {
                ADD_FAILURE_AT(mFile.c_str(), line.number) << step << "\n" << failure.what();
            }
        }
    }

    void check(const Line& line, const std::string& step) {
        const auto [at, arrow] = findWord(step + " ", {"->", "=>", "~", "!~", "<-", "as"});
        const std::string query = step.substr(0, at);
        const size_t behind = at == std::string::npos ? at : at + arrow.size() + 2;
        const std::string wanted = behind < step.size() ? trimmed(step.substr(behind))
                                   : at == std::string::npos && query.compare(0, 2, "$ ") != 0 ? "0"
                                                                                               : "";
        const std::string rest = query.substr(std::min(query.find(' '), query.size() - 1) + 1);
        if (arrow == "<-") {
            write(step[0] == 't' ? terminal(rest) : -1, rest, joined(wanted));
            return;
        }
        std::string got;
        eventually([&, arrow = arrow] {
            got = answer(query.substr(0, query.find(' ')), rest, query, arrow == "~", wanted);
            return arrow != "=>" || got == wanted;
        });
        if (arrow == "as") {
            mNames[wanted] = got;
        } else if (arrow == "~" || arrow == "!~") {
            EXPECT_EQ(got.find(wanted) != std::string::npos, arrow == "~")
                    << place(line) << ": " << step << "\n"
                    << got;
        } else if (got != wanted) {
            ADD_FAILURE_AT(mFile.c_str(), line.number) << query << "\n  -> " << got << "\nnot " << wanted;
        }
    }

    std::string answer(const std::string& verb, const std::string& rest, const std::string& query,
                       bool within, const std::string& wanted) {
        if (verb == "restart") {
            heard();
            mBoard.reset();
            mEnvironment = cases::split(rest);
            return "0";
        }
        if (verb == "file") {
            const std::string path = mState / rest;
            return std::filesystem::exists(path) ? cases::show(contentOf(path)) : "absent";
        }
        if (verb == "$") {
            return shell(rest);
        }
        if (verb == "says") {
            eventually([&] { return heard().find(wanted) != std::string::npos || !within; });
            return trimmed(std::exchange(mSaid, ""));
        }
        if (verb == "tty") {
            return hear(terminal(rest), within, wanted);
        }
        if (verb == "events") {
            const long others = std::count(wanted.begin(), wanted.end(), ';');
            return board().ask("events " +
                               (!rest.empty() ? rest : std::to_string(wanted.empty() ? 0 : others + 1)));
        }
        if (verb == "order") {
            return board().ask("System send_cmd_to_factory_svc 0 " + fapictl::inQuotes(rest));
        }
        if (verb == "state") {
            const std::string status = board().ask("System send_cmd_to_factory_svc 2 " + rest);
            return status == "0" ? fapictl::escaped(contentOf(mState / "state.txt")) : status;
        }
        if (verb == "picture") {
            return picture(rest, wanted);
        }
        const std::string got = board().ask(query);
        if (got.compare(0, 15, "not understood:") == 0) {
            throw std::invalid_argument(got);
        }
        heard();
        mEnded = got.compare(0, 5, "exit ") == 0;
        return got;
    }

    BoardProcess& board() {
        if (mBoard == nullptr) {
            mBoard = std::make_unique<BoardProcess>(mState.path(), mEnvironment);
            mEnded = false;
        }
        return *mBoard;
    }

    /** All of standard error that nobody has asked for. */
    const std::string& heard() {
        mSaid += mBoard == nullptr ? "" : mBoard->said();
        return mSaid;
    }

    std::string shell(const std::string& command) const {
        FILE* pipe = popen(("cd " + mState.path() + "; " + command + " 2>&1").c_str(), "r");
        std::string output;
        for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) {
            output += static_cast<char>(c);
        }
        const int status = pclose(pipe);
        output = fapictl::escaped(trimmed(output));
        return status == 0
                       ? output
                       : output + (output.empty() ? "exit " : " exit ") + std::to_string(WEXITSTATUS(status));
    }

    int terminal(const std::string& name) {
        board().ask("board status");  // it is running
        return mTerminals.try_emplace(name, mState / ("uart/" + name)).first->second.fd;
    }

    void write(int fd, const std::string& target, const std::string& content) const {
        if (fd >= 0) {
            EXPECT_EQ(::write(fd, content.data(), content.size()), static_cast<ssize_t>(content.size()));
            return;
        }
        const size_t at = target.find('@');
        std::string whole = at == std::string::npos ? "" : contentOf(mState / target.substr(0, at));
        if (at != std::string::npos) {
            whole.replace(std::stoul(target.substr(at + 1)), content.size(), content);
        }
        ::write(mState / target.substr(0, at), at == std::string::npos ? content : whole);
    }

    /** As it was wanted when it came; else all that was heard, escaped. */
    static std::string hear(int fd, bool within, const std::string& wanted) {
        const std::string text = within ? wanted : joined(wanted);
        std::string heard;
        for (pollfd polled{fd, POLLIN, 0};
             (within ? heard.find(text) == std::string::npos : heard.size() < text.size()) &&
             poll(&polled, 1, 10'000) > 0;) {
            char chunk[4096];
            const ssize_t got =
                    read(fd, chunk, within ? 1 : std::min(sizeof(chunk), text.size() - heard.size()));
            heard.append(chunk, got > 0 ? static_cast<size_t>(got) : 0);
        }
        return heard == text ? wanted : fapictl::escaped(heard);
    }

    std::string picture(const std::string& layer, const std::string& wanted) {
        const std::string status = board().ask("Display capture_screen_to_usb shot.png " + layer);
        if (status != "0") {
            return status;
        }
        const Picture picture(mState / "files/usb/shot.png");
        std::string all;
        for (const std::string& pixel : cases::split(wanted)) {
            int x = 0, y = 0;
            sscanf(pixel.c_str(), "%d,%d", &x, &y);
            char shown[32];
            snprintf(shown, sizeof(shown), "%d,%d=%06x", x, y, picture.at(x, y));
            all += (all.empty() ? "" : " ") + std::string(shown);
        }
        return all;
    }

    const std::string mFile;
    const std::vector<Line> mLines;
    const TemporaryFolder mState;
    std::vector<std::string> mEnvironment;
    std::map<std::string, std::string> mNames;
    std::map<std::string, Terminal> mTerminals;
    std::unique_ptr<BoardProcess> mBoard;  // made when it is first needed
    bool mEnded = false;                   // in the middle of a command
    std::string mSaid;
};

/** "ThatIsATitle" for "That is a title". */
std::string testName(const std::string& title) {
    std::string name;
    bool upper = true;
    for (const char c : title) {
        if (isalnum(static_cast<unsigned char>(c)) == 0) {
            upper = true;
        } else {
            name += upper ? static_cast<char>(toupper(c)) : c;
            upper = false;
        }
    }
    return name;
}

void registerSections(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::string title, whole;
    std::vector<Line> lines;
    int first = 0, number = 0;
    const auto finish = [&] {
        if (!title.empty()) {
            testing::RegisterTest(testName(path.stem()).c_str(), testName(title).c_str(), nullptr, nullptr,
                                  path.c_str(), first,
                                  [path, lines]() -> Section* { return new Section(path, lines); });
        }
        lines.clear();
    };
    for (std::string text; std::getline(file, text);) {
        ++number;
        const bool continues = !whole.empty();
        whole += continues ? trimmed(text) : text;
        if (!whole.empty() && whole.back() == '\\') {
            whole.pop_back();
            continue;
        }
        if (whole.compare(0, 3, "== ") == 0) {
            finish();
            title = whole.substr(3);
            first = number;
        } else if (!trimmed(whole).empty() && trimmed(whole)[0] != '#') {
            lines.push_back({number, whole});
        }
        whole.clear();
    }
    finish();
}

const bool sRegistered = [] {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(CASES)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::for_each(paths.begin(), paths.end(), registerSections);
    return true;
}();

}  // namespace
