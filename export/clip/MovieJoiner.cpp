// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/MovieJoiner.h"

#include "base/PendingFile.h"
#include "export/clip/ClipContainer.h"
#include "export/clip/MoviePart.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace starbloom {

namespace {

struct JoinedKind {
    std::string_view extension;
    ContainerKind container;
};

constexpr std::array<JoinedKind, 4> joinedKinds{{{".m4v", ContainerKind::Mpeg4},
                                                 {".mp4", ContainerKind::Mpeg4},
                                                 {".mov", ContainerKind::QuickTime},
                                                 {".webm", ContainerKind::WebM}}};

std::optional<ContainerKind> containerFor(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const auto* kind = std::ranges::find(joinedKinds, extension, &JoinedKind::extension);
    return kind != joinedKinds.end() ? std::optional(kind->container) : std::nullopt;
}

/// What has to be known before the first packet is written.
struct Plan {
    MoviePart first;
    std::int64_t delay = 0; ///< The largest of all parts.
};

/// Looks at all parts, one open at a time, and tells whether they fit together.
Result<Plan> planFor(std::span<const std::filesystem::path> paths, ContainerKind kind) {
    auto first = MoviePart::open(paths.front(), kind);
    if (!first) {
        return first.error();
    }
    Plan plan{std::move(first).value(), 0};
    for (const auto& path : paths) {
        auto part = MoviePart::open(path, kind);
        if (!part) {
            return part.error();
        }
        if (const std::string difference = part.value().differenceTo(plan.first); !difference.empty()) {
            return cannotJoin(path, "its " + difference + " is not that of " + paths.front().string());
        }
        const auto delay = part.value().delay();
        if (!delay) {
            return delay.error();
        }
        plan.delay = std::max(plan.delay, delay.value());
    }
    return plan;
}

/// Puts the parts into the file of one movie.
class Joining {
public:
    Joining(ContainerKind kind, ClipContainer container, std::int64_t delay, const std::function<bool()>& goesOn)
        : m_kind(kind)
        , m_container(std::move(container))
        , m_delay(delay)
        , m_goesOn(goesOn) {}

    Result<void> append(const std::filesystem::path& path);

    Result<void> finish() { return m_container.finish(); }

    std::int64_t frames() const { return m_frames; }

    /// Whether a failure was the part's fault.
    bool refusedPart() const { return m_refusedPart; }

private:
    Result<void> append(AVPacket& packet);

    ContainerKind m_kind;
    ClipContainer m_container;
    std::int64_t m_delay;
    const std::function<bool()>& m_goesOn;
    std::int64_t m_frames = 0;
    std::int64_t m_framesBefore = 0; ///< the part that is being read
    bool m_refusedPart = false;
};

Result<void> Joining::append(const std::filesystem::path& path) {
    m_refusedPart = true; // Until the part has done its share.
    auto part = MoviePart::open(path, m_kind);
    if (!part) {
        return part.error();
    }
    m_framesBefore = m_frames;
    while (true) {
        const auto packet = part.value().next();
        if (!packet) {
            return packet.error();
        }
        if (packet.value() == nullptr) {
            m_refusedPart = false;
            return {};
        }
        if (auto appended = append(*packet.value()); !appended) {
            return cannotJoin(path, appended.error().message);
        }
    }
}

/// Times of decoding are counted anew, as very short parts have no room for theirs.
Result<void> Joining::append(AVPacket& packet) {
    if (!m_goesOn()) {
        m_refusedPart = false;
        return Error{"stopped"};
    }
    packet.pts += m_framesBefore;
    packet.dts = m_frames++ - m_delay;
    if (packet.pts < packet.dts) {
        return Error{"its frames are in an order that cannot be kept"};
    }
    auto written = m_container.write(packet);
    m_refusedPart = written && m_refusedPart;
    return written;
}

Result<JoinedMovie> join(std::span<const std::filesystem::path> paths, ContainerKind kind, const PendingFile& file,
                         const std::function<bool()>& goesOn, bool& refused) {
    const auto plan = planFor(paths, kind);
    refused = !plan;
    if (!plan) {
        return plan.error();
    }
    const MoviePart& first = plan.value().first;
    const auto cannotWrite = [&](const Error& error) {
        return Error{"cannot write " + file.target().string() + ": " + error.message};
    };
    auto container =
        ClipContainer::open(file.temporaryPath(), kind, first.parameters(), first.rate(), first.hasAlpha());
    if (!container) {
        return cannotWrite(container.error());
    }
    Joining joining(kind, std::move(container).value(), plan.value().delay, goesOn);
    for (const auto& path : paths) {
        if (auto appended = joining.append(path); !appended) {
            refused = joining.refusedPart();
            return appended.error();
        }
    }
    if (auto finished = joining.finish(); !finished) {
        return cannotWrite(finished.error());
    }
    return JoinedMovie{joining.frames(), static_cast<double>(joining.frames()) / first.rate().perSecond()};
}

} // namespace

Result<JoinedMovie> joinMovies(std::span<const std::filesystem::path> parts, const std::filesystem::path& destination,
                               const std::function<bool()>& goesOn, bool* refused) {
    const auto kind = containerFor(destination);
    if (!kind) {
        return Error{"cannot write " + destination.string() + ": joined movies are .m4v, .mp4, .mov or .webm"};
    }
    if (parts.empty()) {
        return Error{"cannot write " + destination.string() + ": there are no parts to join"};
    }
    auto file = PendingFile::create(destination);
    if (!file) {
        return file.error();
    }
    bool isRefused = false;
    auto joined = join(parts, *kind, file.value(), goesOn, refused != nullptr ? *refused : isRefused);
    if (!joined) {
        return joined;
    }
    if (auto committed = file.value().commit(); !committed) {
        return committed.error();
    }
    return joined;
}

} // namespace starbloom
