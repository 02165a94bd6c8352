// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/documents/Documents.h"
#include "base/PendingFile.h"
#include "cli/OptionTable.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <set>
#include <span>
#include <string>

namespace starbloom {

namespace {

using testing::HasSubstr;

/// What a command says about a text in the file $0, and on success what it prints.
std::string outputOf(const std::string& command, const std::string& text) {
    const TemporaryFolder folder;
    EXPECT_TRUE(writeFile(folder / "text", std::as_bytes(std::span(text))));
    const std::string line =
        "cd '" + folder.path().string() + "' && { " + command + "; } >out 2>&1 || echo status $? >>out";
    EXPECT_EQ(std::system(line.c_str()), 0);
    return readFile(folder / "out");
}

TEST(Documents, TellOfEveryOption) {
    std::set<OptionId> ids;
    for (const OptionRow& each : optionTable()) {
        ids.insert(each.id);
        EXPECT_EQ(row(each.id).name, each.name);
        std::string inManual;
        for (const char c : each.name) {
            inManual += c == '-' ? "\\-" : std::string(1, c);
        }
        EXPECT_THAT(manualPage("1"), HasSubstr("\n.B " + inManual));
        EXPECT_THAT(bashCompletion(), testing::ContainsRegex(std::string(each.name) + "[ ']"));
        EXPECT_THAT(zshCompletion(), HasSubstr(std::string(each.name) + "["));
        EXPECT_THAT(fishCompletion(), HasSubstr(" -l " + std::string(each.name.substr(2)) + " "));
    }
    EXPECT_EQ(ids.size(), static_cast<std::size_t>(OptionId::Version) + 1) << "an option has no row";
}

TEST(Documents, AreReadWithoutComplaint) {
    EXPECT_EQ(outputOf("groff -man -Tutf8 -ww -z text", manualPage("1.2")), "");
    EXPECT_EQ(outputOf("groff -man -Tutf8 -ww -z text", readFile(STARBLOOM_SOURCES "/packaging/man/starbloom.1")), "");
    EXPECT_EQ(outputOf("zsh -f -n text", zshCompletion()), "");
    EXPECT_EQ(outputOf("fish --no-config -n text", fishCompletion()), "");
    EXPECT_THAT(
        outputOf("fish --no-config -c 'source text; complete -C \"starbloom-render --alpha s\"'", fishCompletion()),
        testing::StartsWith("straight"));
    EXPECT_EQ(outputOf("bash -c 'source text\n"
                       "complete_it() { COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _starbloom_render\n"
                       "    echo \"${COMPREPLY[@]}\"; }\n"
                       "complete_it starbloom-render --al; complete_it starbloom-render --alpha p\n"
                       "complete_it starbloom-render --set animate; complete_it starbloom-render --seed x\n"
                       "complete_it starbloom-render te'",
                       bashCompletion()),
              "--alpha\npremultiplied\nanimateSpeedSlider=\n\ntext\n");
}

} // namespace

} // namespace starbloom
