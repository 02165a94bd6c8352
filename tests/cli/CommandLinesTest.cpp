// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/OptionTable.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>

namespace starbloom {

namespace {

using testing::HasSubstr;

/// One command line, run where those before it have left their files, and all that comes of it.
struct Row {
    std::string arguments; ///< The scene comes before them.
    int status = 0;
    std::string makes{};    ///< Files that were not there before, with a space between them.
    std::string compares{}; ///< "a=b" or "a!b": files that are then the same, or are not.
    std::string prints{};   ///< A part of standard output, which is empty otherwise.
    std::string says{};     ///< The same of standard error.
};

/// A lively show that is quickly drawn.
const std::string scene = "--size 64x48 --scale 0.1 ";

const Row done[] = {
    {"--at 6 a.png", 0, "a.png"},
    {"--at 6 --seed 1 --background '#000000' --threads 3 b.png", 0, "b.png", "b.png=a.png"},
    {"--at 6 --seed 2 c.png", 0, "c.png", "c.png!a.png"},
    {"--at 6 --set rocketBirthSlider=20 c1.png", 0, "c1.png", "c1.png!a.png"},
    {"--at 6 --background 204060 c2.png", 0, "c2.png", "c2.png!a.png"},
    {"--at 6 --transparent d.png", 0, "d.png", "d.png!a.png"},
    {"--at 6 --alpha straight d1.png", 0, "d1.png", "d1.png=d.png"},
    {"--at 6 --alpha black d2.png", 0, "d2.png", "d2.png=a.png"},
    {"--at 6 --fps 10 --shutter 0.5 d3.png", 0, "d3.png", "d3.png!a.png"},
    {"--at 6 --quality 50 e.jpg", 0, "e.jpg"},
    {"--at 6 --save-show s.json s.png", 0, "s.json s.png", "s.png=a.png"},
    {"--seed 2 --save-show t.json", 0, "t.json", "t.json!s.json"},
    {"--from 6 --seconds 0.2 f%d.png", 0, "f0.png f1.png f2.png f3.png f4.png f5.png", "f0.png=a.png"},
    {"--from 6 --frames :1 --transparent q%d.tif", 0, "q0.tif"},
    {"--from 6 --frames 2:4 g%02d.png", 0, "g02.png g03.png", "g03.png=f3.png"},
    {"--from 6 --seed 2 --frames :7 --skip-existing f%d.png", 0, "f6.png", "f0.png=a.png"},
    {"--from 6 --frames 3:4 h%d.gif", 0, "h3.gif"},
    {"--from 6 --frames :7 --skip-existing --progress json f%d.png", 0, "", "", "", "\"done\":7,\"total\":7,"},
    {"--skip-existing c.png", 0, "", "c.png!a.png"},
    {"--from 4 --seconds 2 --fade-in 1 --fps 5 f.mp4", 0, "f.mp4"},
    {"--from 4 --seconds 1 --loop --fps 5 h.mp4", 0, "h.mp4", "h.mp4!f.mp4", "", "so their rate is 200 %"},
    {"--from 4 --frames 0:4 --fps 5 i0.mov", 0, "i0.mov"},
    {"--from 4 --frames 4:9 --fps 5 i1.mov", 0, "i1.mov"},
    {"--from 4 --seconds 1 --fps 5 --transparent k.webm", 0, "k.webm"},
    {"--from 4 --seconds 1 --fps 5 --transparent k.webp", 0, "k.webp", "", "", ""},
    {"--from 4 --seconds 1 --fps 5 --transparent k.apng", 0, "k.apng"},
    {"--from 4 --seconds 1 --fps 5 k.gif", 0, "k.gif"},
    {"--at 6 still.gif", 0, "still.gif", "still.gif!k.gif"},
    {"--from 4 --seconds 1 --fps 5 k.y4m", 0, "k.y4m"},
    {"--from 4 --seconds 1 --fps 5 --format y4m - >l.y4m", 0, "l.y4m", "l.y4m=k.y4m"},
    {"--from 4 --seconds 1 --fps 5 --alpha premultiplied --format rgba - >l.rgba", 0, "l.rgba", "l.rgba!k.y4m"},
    {"--check-flashes --seconds 1", 0, "", "", "general flashes: none\nred flashes: none\npassed"},
    {"--check-flashes --seconds 1 --format rgba - >m.rgba", 0, "m.rgba", "", "", "general flashes: none\n"},
    {"--progress json --seconds 0.1 m.apng", 0, "m.apng", "", "", "{\"event\":\"progress\",\"done\":0,\"total\":3,"},
    {"--progress json --seconds 0.1 m.apng", 0, "", "", "", "\n{\"event\":\"end\",\"status\":0}\n"},
    {"--particles --at 6", 0, "", "", "cell,birth,age,x,y,scale,rotation,r,g,b,a\n"},
    {"--list-parameters", 0, "", "", "explodeGravitySlider"},
    {"--help", 0, "", "", "--check-flashes"},
    {"--version", 0, "", "", "starbloom-render "},
    {"--at 6 --fps 3 warned.png", 0, "warned.png", "", "", "--fps is for movies and frames and has no effect here\n"},
    {"--at 6 --fps 3 --quiet quiet.png", 0, "quiet.png", "quiet.png=a.png"},
};

/// These bring their own size.
const Row doneWithoutScene[] = {
    {"--like a.png b1.png", 0, "b1.png", "b1.png=a.png"},
    {"--like c1.png --at 6 b2.png", 0, "b2.png", "b2.png=c1.png"},
    {"--show s.json --at 6 b3.png", 0, "b3.png", "b3.png=a.png"},
    {"--show s.json --seed 2 --save-show u.json", 0, "u.json", "u.json=t.json"},
    {"j.mov --join i0.mov i1.mov", 0, "j.mov"},
    {"--check-flashes --seconds 12 --fps 15 --size 64x48 --scale 0.6 --set animateSpeedSlider=200 "
     "--set rocketBirthSlider=40 --set rocketHeightSlider=8 --set rocketVelocitySlider=250 --set explodeLifeSlider=5 "
     "--set explodeVelocitySlider=300 --save-show n.json n.apng",
     3, "n.apng n.json", "", "FAILED"},
    {"--check-flashes --loop --seconds 0.3 --fps 60 --seed 3 --size 160x120 --scale 0.25 --set rocketBirthSlider=3 "
     "--set explodeLifeSlider=5 --set sparkleLifeSlider=9 --set explodeVelocitySlider=300",
     3, "", "", "FAILED", "--loop: a whole number of rockets starts in a round, so their rate is "},
};

/// A command line that changes no file and says one line, begun with the program's name.
struct Refusal {
    std::string arguments;
    int status;
    std::string says;
};

const Refusal refused[] = {
    {"", 2, "no OUTPUT given"},
    {"a.png b.png", 2, "b.png"},
    {"a.png --seed", 2, "--seed needs N behind it"},
    {"--seed 1 --seed 2 a.png", 2, "--seed is given 2 times"},
    {"--loop=false a.mp4", 2, "--loop takes no value"},
    {"--seconds 1 a%d.webp", 2, "'a%d.webp' has a place for the frame's number, but"},
    {"a%d.mp4", 2, ".mp4 is a movie in one file"},
    {"a.xyz", 2, "'a.xyz' ends in none of"},
    {".", 2, "'.' has no name before its ending"},
    {"--set rocketBirthSlider=0 a.png", 2, "from 3 to 40"},
    {"missing/a.png", 2, "No such file or directory"},
    {"missing/a.webm", 2, "No such file or directory"},
    {"missing/a%d.png", 2, "No such file or directory"},
    {"--save-show missing/a.json", 2, "No such file or directory"},
    {"--shutter 2 a.mp4", 2, "--shutter takes a number from 0 to 1"},
    {"--fps 241 a.mp4", 2, "--fps takes a whole number from 1 to 240"},
    {"--frames 5 a.mp4", 2, "is not A:B"},
    {"--frames 5:5 a.mp4", 2, "is not A:B"},
    {"--frames -1:5 a.mp4", 2, "--frames"},
    {"--seconds 1 --frames 20:31 a.mp4", 2, "has frames 0 to 29"},
    {"--loop a.png", 2, "--loop is for movies and frames alone"},
    {"--loop --fade-in 1 a.mp4", 2, "does not go with --fade-in"},
    {"--transparent a.mp4", 2, "--transparent is for .jp2, .png, .tif, .mov, .webm, .webp, .apng, .rgba"},
    {"--alpha premultiplied a.webp", 2, "--alpha premultiplied is for .mov, .webm, .rgba alone"},
    {"--alpha none a.webp", 2, "straight|premultiplied|black"},
    {"--alpha black --background 112233 a.png", 2, "do not go with --background"},
    {"--quality 50 a.apng", 2, "--quality is for .jpg, .jp2, .webm, .webp alone"},
    {"-", 2, "needs --format"},
    {"--format y4m a.y4m", 2, "--format is for OUTPUT - alone"},
    {"--check-flashes a.png", 2, "--check-flashes is for movies"},
    {"--check-flashes --skip-existing a.mp4", 2, "does not go with --skip-existing"},
    {"--like none.png a.png", 2, "none.png"},
    {"--like k.y4m a.png", 2, "k.y4m"},
    {"--show a.png a.mp4", 2, "a.png"},
    {"--saved a.png", 2, "--saved: the application has saved nothing yet"},
    {"--saved --show s.json a.png", 2, "give one of them"},
    {"--progress xml a.png", 2, "--progress takes bar|json|none, not 'xml'"},
    {"--particles a.png", 2, "takes no OUTPUT"},
    {"j.mov --join i0.mov i1.mov", 2, "--size does not go with --join"},
    {"--seconds 1 --format rgba - >/dev/full", 1, "No space left on device"},
};

const Refusal refusedWithoutScene[] = {
    {"--size 65536x65536 a.mp4", 2, "at most 16384"},
    {"--scale 0 a.png", 2, "--scale takes a number from 0.01 to 100, not '0'"},
    {"--size 30000x100 a.webm", 2, "at most 16384 pixels"},
    {"--size 60000x60000 --seconds 1 a.apng", 2, "MiB"},
    {"--size 65536x1 --scale 0.01 a.png", 2, "points"},
    {"pipe.mp4", 2, "'pipe.mp4' is a pipe or a device: use -"},
    {"--join i0.mov i1.mov j2.mov", 2, "write OUTPUT before --join"},
    {"--size 65501x1 a.jpg", 2, "such a picture is at most 65500"},
    {"j.png --join i0.mov", 2, "--join makes an OUTPUT of"},
    {"j.mov --join none.mov", 2, "none.mov is missing"},
    {"j1.mov --join i0.mov f.mp4", 2, "cannot join f.mp4"},
    {"j1.mov --join i0.mov a.png", 2, "cannot join a.png"},
    {"j1.mov --join i0.mov cut.mov", 2, "cannot join cut.mov"},
};

/// Runs the program as a shell would, without the user's own files.
class CommandLines : public testing::Test {
protected:
    std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& each : std::filesystem::directory_iterator(folder.path())) {
            names.insert(each.path().filename().string());
        }
        return names;
    }

    /// The one that was built, or an installed one.
    static std::string program() {
        const char* installed = std::getenv("STARBLOOM_INSTALLED_RENDER");
        return installed != nullptr ? installed : STARBLOOM_RENDER;
    }

    void check(const Row& row, const std::string& before) {
        SCOPED_TRACE(before + row.arguments);
        const auto earlier = files();
        const std::string command =
            "cd '" + folder.path().string() + "' && XDG_DATA_HOME=/none " + program() + " " + before + row.arguments;
        // A redirection of the row comes first and so counts less than these.
        const bool redirected = row.arguments.find('>') != std::string::npos;
        const int raw = std::system((command + (redirected ? "" : " >'" + out + "'") + " 2>'" + err + "'").c_str());
        EXPECT_EQ(WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, row.status);
        expectPart(redirected ? "" : readFile(out), row.prints);
        expectPart(readFile(err), row.says);
        std::string made;
        for (const std::string& each : files()) {
            made += earlier.contains(each) ? "" : (made.empty() ? "" : " ") + each;
        }
        EXPECT_EQ(made, row.makes);
        if (const auto sign = row.compares.find_first_of("=!"); sign != std::string::npos) {
            const std::string first = readFile(folder / row.compares.substr(0, sign));
            EXPECT_FALSE(first.empty());
            EXPECT_EQ(first == readFile(folder / row.compares.substr(sign + 1)), row.compares[sign] == '=');
        }
    }

    static void expectPart(const std::string& text, const std::string& part) {
        if (part.empty()) {
            EXPECT_EQ(text, "");
        } else {
            EXPECT_THAT(text, HasSubstr(part));
        }
    }

    void check(const Refusal& refusal, const std::string& before) {
        check(Row{refusal.arguments, refusal.status, "", "", "", refusal.says}, before);
        const std::string line = readFile(err);
        EXPECT_EQ(std::ranges::count(line, '\n'), 1) << line;
        EXPECT_TRUE(line.starts_with("starbloom-render: ")) << line;
    }

    TemporaryFolder folder;
    TemporaryFolder outputs;
    std::string out = outputs / "out";
    std::string err = outputs / "err";
};

TEST_F(CommandLines, EachOptionWorksAndEachMistakeIsRefused) {
    std::string all;
    for (const Row& each : done) {
        check(each, scene);
        all += each.arguments + ' ';
    }
    for (const Row& each : doneWithoutScene) {
        check(each, "");
        all += each.arguments + ' ';
    }
    for (const Refusal& each : refused) {
        check(each, scene);
    }
    ASSERT_EQ(::mkfifo((folder / "pipe.mp4").c_str(), 0600), 0);
    const std::string part = readFile(folder / "i0.mov");
    std::ofstream(folder / "cut.mov") << part.substr(0, part.size() / 2);
    for (const Refusal& each : refusedWithoutScene) {
        check(each, "");
    }
    for (const OptionRow& each : optionTable()) {
        if (each.id != OptionId::Saved && each.id != OptionId::Size && each.id != OptionId::Scale) {
            EXPECT_THAT(all, HasSubstr(std::string(each.name) + ' ')) << "is in no row";
        }
    }
}

} // namespace

} // namespace starbloom
