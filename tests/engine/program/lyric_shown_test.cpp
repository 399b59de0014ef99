// Which line of a lyric stands on the screen while the real engine plays, as assistive technology
// reads it off the windows.

#include "program_shown.h"

#include "platform/backends/qt/window/form_window.h"
#include "playback/Main.h"

#include <QAccessible>
#include <QTimer>
#include <QWidget>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <optional>
#include <random>
#include <vector>

namespace velmora::tests {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds tick{70}; // as the program looks for its line
constexpr int rate = 8000;

void append(std::string &bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
}

// A quiet hum of one channel.
void writeHum(const std::string &path, int seconds) {
    const auto frames = static_cast<std::uint32_t>(seconds * rate);
    std::string file = "RIFF";
    append(file, 36 + frames * 2, 4);
    file += "WAVEfmt ";
    append(file, 16, 4);
    append(file, 1, 2);
    append(file, 1, 2);
    append(file, rate, 4);
    append(file, rate * 2, 4);
    append(file, 2, 2);
    append(file, 16, 2);
    file += "data";
    append(file, frames * 2, 4);
    for (std::uint32_t frame = 0; frame < frames; ++frame)
        append(file, static_cast<std::uint32_t>(std::lround(900 * std::sin(frame * 0.3))), 2);
    std::ofstream(path, std::ios::binary) << file;
}

QAccessibleInterface *accessOf(const forms::Form &form) {
    const auto *window = static_cast<const platform::qt::QtFormWindow *>(form.window());
    return window == nullptr || window->top() == nullptr
               ? nullptr
               : QAccessible::queryAccessibleInterface(window->top());
}

bool isShown(QAccessibleInterface &access) {
    return access.isValid() && access.state().invisible == 0;
}

// The name of the one text of a window that can be seen; empty when there is none.
std::string textOf(const forms::Form &form) {
    QAccessibleInterface *window = accessOf(form);
    for (int i = 0; window != nullptr && i < window->childCount(); ++i) {
        QAccessibleInterface *child = window->child(i);
        if (child->role() == QAccessible::StaticText && isShown(*child))
            return child->text(QAccessible::Name).toStdString();
    }
    return {};
}

// Whether a text of that name can be seen in a window.
bool shows(const forms::Form &form, const std::string &name) {
    QAccessibleInterface *window = accessOf(form);
    for (int i = 0; window != nullptr && i < window->childCount(); ++i) {
        QAccessibleInterface *child = window->child(i);
        if (isShown(*child) && child->text(QAccessible::Name).toStdString() == name)
            return true;
    }
    return false;
}

// Counts what a timer like the program's own counts in the same loop: on a machine that gives the
// loop no time, neither ticks.
class Ticks {
public:
    Ticks() {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.callOnTimeout([this] { ++count_; });
        timer_.start(tick);
    }
    int count() const { return count_; }

private:
    QTimer timer_;
    int count_ = 0;
};

// Two ticks of the program's lie between at most so many of another timer.
constexpr int twoTicks = 3;

struct Line {
    int second;
    std::string words;
};

class LyricShown : public ProgramShown {
protected:
    // Starts a track with this lyric, the desktop line switched on.
    void playWith(std::vector<Line> lines, int seconds) {
        lines_ = std::move(lines);
        writeHum(folder_.path() + "/track.wav", seconds);
        std::ofstream lyric(folder_.path() + "/track.lrc", std::ios::binary);
        // Hundredths do not count, and neither does the order of the lines.
        for (auto line = lines_.rbegin(); line != lines_.rend(); ++line) {
            char label[40];
            std::snprintf(label, sizeof label, "[%02d:%02d.%02d]", line->second / 60,
                          line->second % 60, line->second * 37 % 100);
            lyric << label << line->words << "\r\n";
        }
        lyric.close();
        app_->Main().Volume_Set.setWidth(app_->Main().Volume_Set_BG.width());
        app_->player().open_File(fromUtf8(folder_.path() + "/track.wav"));
        app_->player().play_Sub();
        ASSERT_TRUE(app_->lrcForm().hasLrc);
        app_->Main().desktop_Lrc_Click();
        ASSERT_TRUE(pumpUntil([&] { return positionMs() > 0; }, 60000));
    }

    // The clock that the lines follow: whole seconds, a half going to the even one.
    int clockNow() { return static_cast<int>(std::nearbyint(positionMs() / 1000.0)); }

    int positionMs() {
        const auto answer = toUtf8(media_.mciSendStringA(u"status NOWMUSIC position", 20).text);
        return answer.empty() ? 0 : std::stoi(answer);
    }

    std::string shown() { return textOf(app_->lrcForm()); }

    void seekTo(int ms) {
        velmora::Main &main = app_->Main();
        const double usable = main.load_Played_BG.width() - 120.0;
        main.load_Played_BG_MouseUp(static_cast<Twips>(usable * ms / app_->player().get_Length()));
    }

    // How many ticks after the clock first equals the line's label the line stands on the desktop
    // and in the main window.
    std::optional<int> latenessOf(const Line &line, int limitMs) {
        std::optional<int> due;
        if (!pumpUntil(
                [&] {
                    if (!due && clockNow() >= line.second)
                        due = ticks_.count();
                    return due && shown() == line.words && shows(app_->Main(), line.words);
                },
                limitMs))
            return std::nullopt;
        return ticks_.count() - *due;
    }

    // For so long, what stands there is this text until a label is met, and from then on its line.
    void followRules(const std::string &text, int ms) {
        const auto lineAt = [this](int second) {
            for (const Line &line : lines_)
                if (line.second == second)
                    return line.words;
            return std::string();
        };
        const int begun = clockNow();
        // Labels may be met while the seek is still under way.
        const auto isMet = [&](const std::string &words) {
            const int now = clockNow();
            for (int second = begun; second <= now; ++second)
                if (!words.empty() && words == lineAt(second))
                    return true;
            return false;
        };
        ASSERT_TRUE(pumpUntil(
            [&] {
                const std::string now = shown();
                return now == text || isMet(now);
            },
            1000))
            << shown() << " at second " << begun;
        std::string before = shown();
        std::string expected = before;
        int clock = -1;
        int since = ticks_.count();
        const auto end = Clock::now() + milliseconds(ms);
        while (Clock::now() < end) {
            pump(5);
            if (const int now = clockNow(); now != clock) {
                // A second that was over too soon may have gone by between two ticks.
                if (clock >= 0)
                    before = expected = shown();
                clock = now;
                since = ticks_.count();
                if (const std::string words = lineAt(now); !words.empty())
                    expected = words;
            }
            const std::string now = shown();
            ASSERT_TRUE(now == expected || now == before) << now << " at second " << clock;
            // Two ticks later the new line stands.
            if (ticks_.count() - since > twoTicks) {
                ASSERT_EQ(now, expected) << "at second " << clock;
                before = expected;
            }
        }
    }

    std::vector<Line> lines_;
    Ticks ticks_;
};

TEST_F(LyricShown, EachOfSixtyLinesStandsWithinTwoTicksOfItsSecond) {
    std::vector<Line> lines;
    for (int second = 1; second <= 60; ++second)
        lines.push_back({second, "line " + std::to_string(second)});
    playWith(lines, 62);
    for (const Line &line : lines_) {
        const auto lateness = latenessOf(line, 3000);
        ASSERT_TRUE(lateness) << line.words << " never came up";
        EXPECT_LE(*lateness, twoTicks) << line.words;
    }
}

TEST_F(LyricShown, AfterRandomSeeksTheWaitingTextStandsUntilTheNextLabelIsMet) {
    std::mt19937 random(20111);
    std::vector<Line> lines;
    for (int second = 2; lines.size() < 60; second += 1 + static_cast<int>(random() % 4))
        lines.push_back({second, "words " + std::to_string(second)});
    const int length = lines.back().second + 3;
    playWith(lines, length);
    const std::string wait = toUtf8(app_->lrcForm().lrcWaitText);
    ASSERT_EQ(wait, "Music...");
    int waits = 0;
    int met = 0;
    for (int seek = 0; seek < 50; ++seek) {
        seekTo(500 + static_cast<int>(random() % static_cast<unsigned>((length - 4) * 1000)));
        followRules(wait, 900);
        (shown() == wait ? waits : met) += 1;
        if (HasFatalFailure())
            return;
    }
    // Both outcomes were met.
    EXPECT_GT(waits, 5);
    EXPECT_GT(met, 5);
}

} // namespace
} // namespace velmora::tests
