// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/PictureExport.h"

#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace starbloom {

namespace {

using testing::HasSubstr;

class PictureExport : public testing::Test {
protected:
    PictureRequest request(const std::string& name, int side = 8) {
        PictureRequest request;
        request.image = ImageBuffer(side, side);
        request.folder = folder.path();
        request.name = name;
        return request;
    }

    std::string exportedName(const PictureRequest& request) { return exportPicture(request).value().filename(); }

    TemporaryFolder folder;
};

TEST_F(PictureExport, everyPictureGetsAFreeName) {
    EXPECT_EQ(exportedName(request("Fire")), "Fire.png");
    EXPECT_EQ(exportedName(request("Fire")), "Fire_001.png");
    EXPECT_EQ(exportedName(request("Fire")), "Fire_002.png");
    PictureRequest numbered = request("Ice");
    numbered.numbered = true;
    numbered.format = PictureFormat::Jpeg;
    EXPECT_EQ(exportedName(numbered), "Ice_001.jpg");
    EXPECT_EQ(exportedName(numbered), "Ice_002.jpg");
    EXPECT_EQ(exportedName(request("../up")), "Picture.png");
    EXPECT_EQ(exportedName(request(":")), "Picture_001.png");
    for (int n = 3; n < 1000; ++n) {
        const std::string digits = std::to_string(1000 + n).substr(1);
        std::ofstream(folder / ("Fire_" + digits + ".png")) << "kept";
    }
    EXPECT_EQ(exportedName(request("Fire")), "Fire_1000.png");
    EXPECT_EQ(readFile(folder / "Fire_999.png"), "kept");
}

TEST_F(PictureExport, twoProgramsLoseNoPicture) {
    constexpr int each = 500;
    for (int process = 0; process < 2; ++process) {
        if (::fork() == 0) {
            int made = 0;
            while (made < each && exportPicture(request("Fire"))) {
                ++made;
            }
            ::_exit(made == each ? 0 : 1);
        }
    }
    for (int process = 0; process < 2; ++process) {
        int status = -1;
        ::wait(&status);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(folder.entryCount(), 2 * each);
    EXPECT_TRUE(std::filesystem::exists(folder / "Fire_999.png"));
}

TEST_F(PictureExport, aFailureNamesTheFileAndLeavesNothing) {
    const auto failsWith = [](const PictureRequest& request, const std::string& words) {
        const auto result = exportPicture(request);
        const auto path = (request.folder / request.name).string();
        EXPECT_THAT(result.error().message, testing::AllOf(HasSubstr("cannot write " + path), HasSubstr(words)));
    };
    for (const PictureFormatRow& each : pictureFormats) {
        PictureRequest large = request("Large", 4000);
        large.format = each.format;
        const FileSizeLimit limit(2048);
        if (each.format != PictureFormat::Jpeg2000 && each.format != PictureFormat::Gif) { // Black takes nothing there.
            failsWith(large, "File too large");
        }
    }
    failsWith(request(std::string(252, 'n')), "File name too long");
    PictureRequest lost = request("Fire");
    lost.folder /= "vanished";
    failsWith(lost, "No such file or directory");
    lost.image = ImageBuffer();
    failsWith(lost, "without pixels");
    EXPECT_EQ(folder.entryCount(), 0);
    EXPECT_EQ(exportedName(request("Large", 4000)), "Large.png");
    if (::geteuid() != 0) { // Nothing is read-only for root.
        std::filesystem::permissions(folder.path(),
                                     std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
        failsWith(request("Fire"), "Permission denied");
        std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
    }
}

} // namespace

} // namespace starbloom
