// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/shell/PictureSamples.h"

#include "shell/LoadedEncoders.h"
#include "tests/support/TemporaryFolder.h"

#include <QBuffer>
#include <QImage>
#include <QtEndian>

#include <fstream>
#include <random>
#include <sys/stat.h>

namespace starbloom {

namespace {

using namespace std::string_literals;

constexpr QSize goodSize(7, 5);

std::string savedByToolkit(const QSize& size, const char* format) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data().toStdString();
}

std::string savedByUs(const std::filesystem::path& folder, PictureFormat format) {
    LoadedEncoders encoders;
    const PictureRequest request{
        ImageBuffer(goodSize.width(), goodSize.height()), folder, "seed", format, 0, false, {}};
    return readFile(encoders.exportPicture(request).value());
}

std::string bigEndian(std::uint32_t number) {
    std::string bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

std::string psd(const QSize& size) {
    return "8BPS\0\1\0\0\0\0\0\0\0\3"s + bigEndian(static_cast<std::uint32_t>(size.height())) +
           bigEndian(static_cast<std::uint32_t>(size.width())) + "\0\10\0\3"s;
}

/// A field of a directory with one number of 32 bits.
std::string field(char tag, std::uint32_t value) {
    return std::string{'\1', tag, '\0', '\4', '\0', '\0', '\0', '\1'} + bigEndian(value);
}

/// One directory after the other, as short as they can be; the last one leads to a place of choice.
std::string tiff(const std::vector<QSize>& sizes, std::uint32_t afterLast = 0) {
    std::string file = "MM\0*\0\0\0\10"s;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        file += "\0\4"s + field('\0', static_cast<std::uint32_t>(sizes[i].width()));
        file += field('\1', static_cast<std::uint32_t>(sizes[i].height()));
        file += field('\x11', 8) + field('\x17', 1); // Where the pixels are, and how many bytes.
        file += bigEndian(i + 1 < sizes.size() ? static_cast<std::uint32_t>(file.size() + 4) : afterLast);
    }
    return file;
}

std::string pdf(const std::string& objects) {
    return "%PDF-1.5\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n" + objects + "\ntrailer<</Root 1 0 R>>\n%%EOF\n";
}

std::string goodPdf() {
    return pdf("2 0 obj<</Type/Pages/Count 2/Kids[3 0 R 4 0 R]>>endobj\n"
               "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 7 3]>>endobj\n"
               "4 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 5 4]/Rotate 90>>endobj");
}

/// A table of objects that unpacks from a hundred bytes to a hundred megabytes.
std::string pdfBomb() {
    const QByteArray once = qCompress(QByteArray(100 << 20, '\1'), 9).mid(4);
    const std::string twice = qCompress(once, 9).mid(4).toStdString();
    std::string file = pdf("2 0 obj<</Type/Pages/Count 1/Kids[]>>endobj");
    const std::string place = std::to_string(file.size());
    return file + "9 0 obj<</Type/XRef/Root 1 0 R/W[1 2 2]/Size 20000000/Filter[/FlateDecode/FlateDecode]/Length " +
           std::to_string(twice.size()) + ">>stream\n" + twice + "\nendstream endobj\nstartxref\n" + place +
           "\n%%EOF\n";
}

std::uint32_t crc(std::string_view bytes) {
    std::uint32_t sum = ~0U;
    for (const char byte : bytes) {
        sum ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xedb88320U : 0U);
        }
    }
    return ~sum;
}

/// With a sum that is right, so that only the size is wrong.
std::string hugePng(std::uint32_t side) {
    std::string file = savedByToolkit(goodSize, "png");
    file.replace(16, 8, bigEndian(side) + bigEndian(side));
    return file.replace(29, 4, bigEndian(crc(std::string_view(file).substr(12, 17))));
}

/// Behind its mark stand, after four bytes, width, height and origin, and then the size of tiles.
std::string patchedJp2(std::string file, std::uint32_t side, std::uint32_t tile) {
    const auto size = file.find("\xff\x4f\xff\x51") + 8;
    const auto none = bigEndian(0);
    return file.replace(size, 24, bigEndian(side) + bigEndian(side) + none + none + bigEndian(tile) + bigEndian(tile));
}

class Maker {
public:
    explicit Maker(std::filesystem::path folder)
        : m_folder(std::move(folder))
        , m_good(goodPictures(m_folder)) {}

    void addHostileFiles() {
        const std::string tiled = m_good["jp2"];
        for (const auto& [name, bytes] : std::map<std::string, std::string>{
                 {"empty.png", ""},
                 {"text.png", "Once upon a time there was a picture.\n"},
                 {"mention.pdf", "A text that mentions %PDF-1.4 and has nothing else of it.\n"},
                 {"size.png", hugePng(0x80000000U)},
                 {"size2.png", hugePng(0x7fffffffU)},
                 {"size.tif", tiff({{-1, -1}})},
                 {"size.psd", psd({-1, -1})},
                 {"size.jp2", patchedJp2(tiled, 0xffffffffU, 0xffffffffU)},
                 {"tiles.jp2", patchedJp2(tiled, 0xffffffffU, 1)},
                 {"bomb.pdf", pdfBomb()},
                 {"newline\nin its name.png", "no picture"},
                 {"no text \xff\xfe.png", "no picture"},
             }) {
            add(name, bytes, true);
        }
        add("loop.tif", tiff({goodSize, goodSize}, 8), false);
        add("far.tif", tiff({goodSize}, 0xfffffff0U), false);
        add("pages.tif", tiff(std::vector(5000, goodSize)), false);
        add("recursive.pdf", pdf("2 0 obj<</Type/Pages/Count 2147483647/Kids[2 0 R 2 0 R]>>endobj"), false);
        addWhatIsNoFile();
    }

    /// Good pictures that have been cut off, written over, or given the name of another type.
    void addDamaged(int number) {
        auto picture = std::next(m_good.begin(), number % static_cast<int>(m_good.size()));
        std::string bytes = picture->second;
        switch (below(3)) {
        case 0:
            bytes.resize(below(bytes.size()));
            break;
        case 1:
            for (std::size_t i = 1 + below(20); i > 0; --i) {
                bytes[below(bytes.size())] = static_cast<char>(below(256));
            }
            break;
        default:
            // A number at the beginning becomes as large as it can.
            bytes.replace(below(std::min<std::size_t>(100, bytes.size() - 4)), 4, 4, '\xff');
        }
        const auto name = std::next(m_good.begin(), static_cast<int>(below(m_good.size())));
        add("damaged" + std::to_string(number) + '.' + name->first, bytes, false);
    }

    std::vector<BrokenPicture> made;

private:
    void add(const std::string& name, const std::string& bytes, bool hopeless) {
        std::ofstream(m_folder / name, std::ios::binary) << bytes;
        made.push_back({m_folder / name, hopeless});
    }

    void addWhatIsNoFile() {
        const auto path = [this](const char* name) { return made.emplace_back(m_folder / name, true).path; };
        ::mkfifo(path("pipe.png").c_str(), 0600);
        std::filesystem::create_symlink("/dev/zero", path("endless.png"));
        std::filesystem::create_symlink("self.png", path("self.png"));
        std::filesystem::create_symlink("nowhere", path("dangling.png"));
        path("missing.png");
        add("unreadable.png", "no picture", true);
        std::filesystem::permissions(m_folder / "unreadable.png", std::filesystem::perms::none);
    }

    std::size_t below(std::size_t end) { return m_random() % end; }

    std::filesystem::path m_folder;
    std::map<std::string, std::string> m_good;
    std::mt19937 m_random{5};
};

} // namespace

std::map<std::string, std::string> goodPictures(const std::filesystem::path& folder) {
    const std::string jpeg = savedByToolkit(goodSize, "jpeg");
    const std::string twoPages = tiff({{7, 2}, {3, 5}});
    return {{"bmp", savedByToolkit(goodSize, "bmp")},
            {"gif", savedByUs(folder, PictureFormat::Gif)},
            {"jp2", savedByUs(folder, PictureFormat::Jpeg2000)},
            {"jpeg", jpeg},
            {"jpg", jpeg},
            {"pdf", goodPdf()},
            {"png", pngOf(goodSize)},
            {"psd", psd(goodSize)},
            {"tif", twoPages},
            {"tiff", savedByUs(folder, PictureFormat::Tiff)}};
}

std::string pngOf(const QSize& size) {
    return savedByToolkit(size, "png");
}

std::vector<BrokenPicture> makeBrokenPictures(const std::filesystem::path& folder, int count) {
    Maker maker(folder);
    maker.addHostileFiles();
    for (int number = 0; static_cast<int>(maker.made.size()) < count; ++number) {
        maker.addDamaged(number);
    }
    return maker.made;
}

} // namespace starbloom
