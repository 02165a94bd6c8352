// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/ColorProfile.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace starbloom {

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>; // Rows.

Vector times(const Matrix& matrix, const Vector& v) {
    Vector result{};
    for (std::size_t i = 0; i < 3; ++i) {
        result[i] = matrix[i][0] * v[0] + matrix[i][1] * v[1] + matrix[i][2] * v[2];
    }
    return result;
}

Matrix times(const Matrix& left, const Matrix& right) {
    Matrix result{};
    for (std::size_t column = 0; column < 3; ++column) {
        const Vector v = times(left, Vector{right[0][column], right[1][column], right[2][column]});
        for (std::size_t i = 0; i < 3; ++i) {
            result[i][column] = v[i];
        }
    }
    return result;
}

/// By cofactors.
Matrix inverse(const Matrix& m) {
    Matrix result{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const std::size_t a = (j + 1) % 3;
            const std::size_t b = (j + 2) % 3;
            const std::size_t c = (i + 1) % 3;
            const std::size_t d = (i + 2) % 3;
            result[i][j] = m[a][c] * m[b][d] - m[a][d] * m[b][c];
        }
    }
    const double determinant = m[0][0] * result[0][0] + m[0][1] * result[1][0] + m[0][2] * result[2][0];
    for (Vector& row : result) {
        for (double& each : row) {
            each /= determinant;
        }
    }
    return result;
}

/// XYZ of a chromaticity, at luminance 1.
Vector xyz(double x, double y) {
    return {x / y, 1.0, (1.0 - x - y) / y};
}

constexpr Vector profileWhite{0.9642, 1.0, 0.8249}; // D50, as all profiles count from it.

/// From the white of the screen, D65, to that of the profile, after Bradford.
Matrix adaptation() {
    constexpr Matrix cones{{{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};
    const Vector from = times(cones, xyz(0.3127, 0.3290));
    const Vector to = times(cones, profileWhite);
    const Matrix gain{{{to[0] / from[0], 0, 0}, {0, to[1] / from[1], 0}, {0, 0, to[2] / from[2]}}};
    return times(inverse(cones), times(gain, cones));
}

/// The columns are red, green and blue at full strength, seen under the profile's white.
Matrix colorants() {
    const Vector red = xyz(0.64, 0.33);
    const Vector green = xyz(0.30, 0.60);
    const Vector blue = xyz(0.15, 0.06);
    Matrix primaries{{{red[0], green[0], blue[0]}, {red[1], green[1], blue[1]}, {red[2], green[2], blue[2]}}};
    const Vector strength = times(inverse(primaries), xyz(0.3127, 0.3290));
    for (Vector& row : primaries) {
        for (std::size_t i = 0; i < 3; ++i) {
            row[i] *= strength[i];
        }
    }
    return times(adaptation(), primaries);
}

/// Profiles are written with the highest byte first.
class ProfileWriter {
public:
    void text(std::string_view text) {
        for (const char c : text) {
            m_bytes.push_back(static_cast<std::byte>(c));
        }
    }

    void number(std::uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            m_bytes.push_back(static_cast<std::byte>(value >> shift));
        }
    }

    void fixed(double value) { number(static_cast<std::uint32_t>(std::lround(value * 65536.0))); }

    void zeros(std::size_t count) { m_bytes.resize(m_bytes.size() + count); }

    void setNumber(std::size_t at, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i) {
            m_bytes[at + i] = static_cast<std::byte>(value >> (24 - 8 * i));
        }
    }

    std::size_t size() const { return m_bytes.size(); }

    std::vector<std::byte> take() { return std::move(m_bytes); }

private:
    std::vector<std::byte> m_bytes;
};

constexpr std::size_t headerSize = 128;
constexpr std::uint32_t tagCount = 10;

/// Tags, whose places are entered in the table as they are written. Several may share one content.
class Tags {
public:
    explicit Tags(ProfileWriter& writer)
        : m_writer(writer)
        , m_entry(headerSize + 4) {
        m_writer.number(tagCount);
        m_writer.zeros(std::size_t{12} * tagCount);
    }

    template <typename Content>
    void add(std::initializer_list<std::string_view> names, const Content& content) {
        const std::size_t begin = m_writer.size();
        content();
        const std::size_t length = m_writer.size() - begin;
        m_writer.zeros((4 - length % 4) % 4);
        for (const std::string_view name : names) {
            std::uint32_t signature = 0;
            for (const char c : name) {
                signature = signature << 8U | static_cast<unsigned char>(c);
            }
            m_writer.setNumber(m_entry, signature);
            m_writer.setNumber(m_entry + 4, static_cast<std::uint32_t>(begin));
            m_writer.setNumber(m_entry + 8, static_cast<std::uint32_t>(length));
            m_entry += 12;
        }
    }

private:
    ProfileWriter& m_writer;
    std::size_t m_entry;
};

void putHeader(ProfileWriter& writer) {
    writer.number(0); // The size, entered at the end.
    writer.number(0);
    writer.number(0x04300000); // Version 4.3
    writer.text("mntrRGB XYZ ");
    for (const std::uint32_t part :
         {0x07E80001U, 0x00010000U, 0U}) { // Made on 1 January 2024, so that it never changes.
        writer.number(part);
    }
    writer.text("acsp");
    writer.zeros(28);
    for (const double part : profileWhite) {
        writer.fixed(part);
    }
    writer.zeros(headerSize - writer.size());
}

void putText(ProfileWriter& writer, std::string_view text) {
    writer.text("mluc");
    writer.number(0);
    writer.number(1);  // One language,
    writer.number(12); // whose record has this length:
    writer.text("enUS");
    writer.number(static_cast<std::uint32_t>(2 * text.size()));
    writer.number(28);
    for (const char c : text) {
        writer.zeros(1);
        writer.text({&c, 1});
    }
}

void putXyz(ProfileWriter& writer, const Vector& value) {
    writer.text("XYZ ");
    writer.number(0);
    for (const double part : value) {
        writer.fixed(part);
    }
}

/// (a x + b)^g from d on, c x below it: the curve of sRGB as its standard gives it.
void putCurve(ProfileWriter& writer) {
    writer.text("para");
    writer.number(0);
    writer.number(0x00030000);
    for (const double part : {2.4, 1.0 / 1.055, 0.055 / 1.055, 1.0 / 12.92, 0.04045}) {
        writer.fixed(part);
    }
}

} // namespace

std::vector<std::byte> srgbProfile() {
    ProfileWriter writer;
    putHeader(writer);
    Tags tags(writer);
    tags.add({"desc"}, [&] { putText(writer, "sRGB"); });
    tags.add({"cprt"}, [&] { putText(writer, "No copyright"); });
    tags.add({"wtpt"}, [&] { putXyz(writer, profileWhite); });
    tags.add({"chad"}, [&] {
        writer.text("sf32");
        writer.number(0);
        for (const Vector& row : adaptation()) {
            for (const double each : row) {
                writer.fixed(each);
            }
        }
    });
    const Matrix columns = colorants();
    for (const auto& [name, i] : {std::pair("rXYZ", 0U), std::pair("gXYZ", 1U), std::pair("bXYZ", 2U)}) {
        tags.add({name}, [&] { putXyz(writer, {columns[0][i], columns[1][i], columns[2][i]}); });
    }
    tags.add({"rTRC", "gTRC", "bTRC"}, [&] { putCurve(writer); });
    writer.setNumber(0, static_cast<std::uint32_t>(writer.size()));
    return writer.take();
}

} // namespace starbloom
