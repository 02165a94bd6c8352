// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/OptionTable.h"
#include "cli/documents/Documents.h"

#include <algorithm>

namespace starbloom {

namespace {

/// A line of text as it is: nothing in it is a command, and hyphens stay what one can copy into a shell.
std::string plain(std::string_view text) {
    std::string line;
    for (const char c : text) {
        if (c == '\\') {
            line += "\\e";
        } else if (c == '-') {
            line += "\\-";
        } else {
            line += c;
        }
    }
    return line.starts_with('.') || line.starts_with('\'') ? "\\&" + line : line;
}

std::string inCapitals(std::string_view text) {
    std::string capitals(text);
    std::ranges::transform(capitals, capitals.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return capitals;
}

void addOption(std::string& page, const OptionRow& row) {
    page += ".TP\n.B " + plain(row.name) + "\n";
    if (!row.valueName.empty()) {
        page.pop_back();
        page += " \\fI" + plain(row.valueName) + "\\fR\n";
    }
    page += plain(row.help) + ".\n";
    if (!row.more.empty()) {
        page += plain(row.more) + "\n";
    }
}

constexpr const char* beginning = R"(.SH NAME
starbloom\-render \- render fireworks without a screen
.SH SYNOPSIS
.B starbloom\-render
.RI [ OPTION ]...
.I OUTPUT
.br
.B starbloom\-render
.I OUTPUT
.B \-\-join
.IR PART ...
.SH DESCRIPTION
Renders the show of
.BR starbloom (1)
into files. A show is decided by its seed and its parameters alone: the same command gives the same pictures, byte for
byte, on any number of threads, and any frame can be made without the frames before it. Files appear whole or not at
all.
)";

constexpr const char* ending = R"(.SH FILES
.TP
.I $XDG_DATA_HOME/Starbloom
What the application keeps, for
.BR \-\-saved ;
.I ~/.local/share/Starbloom
where the variable is not set.
.SH EXAMPLES
.EX
starbloom\-render show.png
starbloom\-render \-\-size 1920x1080 \-\-fps 60 \-\-shutter 0.5 show.mp4
starbloom\-render \-\-loop \-\-seconds 6 \-\-transparent glow.webm
starbloom\-render \-\-format y4m \- | ffmpeg \-i \- show.mkv
.EE
.SH SEE ALSO
.BR starbloom (1)
)";

} // namespace

std::string manualPage(std::string_view version) {
    std::string page = ".TH STARBLOOM\\-RENDER 1 \"\" \"Starbloom " + std::string(version) + "\"\n" + beginning;
    page += ".SH OUTPUT\n" + plain(outputHelp) + ".\n";
    std::string_view heading;
    for (const OptionRow& each : optionTable()) {
        if (each.heading != heading) {
            heading = each.heading;
            page += ".SH \"OPTIONS: " + inCapitals(heading) + "\"\n";
        }
        addOption(page, each);
    }
    for (const TopicRow& each : topicTable()) {
        page += ".SH \"" + inCapitals(each.heading) + "\"\n" + plain(each.text) + "\n";
    }
    page += ".SH \"EXIT STATUS\"\n";
    for (const StatusRow& each : statusTable()) {
        page += ".TP\n.B " + std::to_string(each.status) + "\n" + plain(each.meaning) + ".\n";
    }
    return page + ending;
}

} // namespace starbloom
