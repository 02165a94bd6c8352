// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/MovieJoiner.h"

#include "base/PendingFile.h"
#include "export/clip/ClipContainer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
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

Error cannotJoin(const std::filesystem::path& part, const std::string& why) {
    return Error{"cannot join " + part.string() + ": " + why};
}

/// One of the movies, which is not trusted to be one.
class Part {
public:
    static Result<Part> open(const std::filesystem::path& path, ContainerKind container);

    /// What this part has other than the first one; empty when they fit together.
    std::string differenceTo(const Part& first) const;

    /// The next packet in the order of decoding, its time of showing in frames from 0, its time of decoding unknown;
    /// null at the end. Valid until the next call. Fails where the part has no whole frames.
    Result<AVPacket*> next();

    const std::filesystem::path& path() const { return m_path; }

    const AVCodecParameters& parameters() const { return *m_stream->codecpar; }

    bool hasAlpha() const;

    FrameRate rate() const { return {m_rate.num, m_rate.den}; }

    /// How many frames the first one is decoded ahead of its time. Fails without a first frame.
    Result<std::int64_t> delay();

private:
    Part() = default;

    Result<bool> read();
    Result<AVPacket*> ended() const;
    bool isWhole() const;

    std::int64_t inFrames(std::int64_t time) const {
        return av_rescale_q_rnd(time, m_stream->time_base, av_inv_q(m_rate), AV_ROUND_NEAR_INF);
    }

    std::filesystem::path m_path;
    InputPointer m_input;
    PacketPointer m_packet;
    AVStream* m_stream = nullptr; ///< owned by the input
    AVRational m_rate{};
    bool m_isAhead = false; ///< Whether the packet has been read, but not given yet.
    std::int64_t m_firstTime = 0;
    std::int64_t m_frames = 0;
    std::int64_t m_lastShown = -1;
    std::int64_t m_sumOfTimes = 0;
};

Result<Part> Part::open(const std::filesystem::path& path, ContainerKind container) {
    forwardLibavLog();
    Part part;
    part.m_path = path;
    const AVInputFormat* format = av_find_input_format(container == ContainerKind::WebM ? "webm" : "mov");
    AVFormatContext* input = nullptr;
    if (const int error = avformat_open_input(&input, urlOf(path).c_str(), format, nullptr); error < 0) {
        return cannotJoin(path, reasonOf(error));
    }
    part.m_input.reset(input);
    part.m_packet.reset(av_packet_alloc());
    if (part.m_packet == nullptr) {
        return cannotJoin(path, reasonOf(AVERROR(ENOMEM)));
    }
    if (const int error = avformat_find_stream_info(input, nullptr); error < 0) {
        return cannotJoin(path, reasonOf(error));
    }
    if (input->nb_streams != 1 || input->streams[0]->codecpar->codec_type != AVMEDIA_TYPE_VIDEO) {
        return cannotJoin(path, "it is not a movie without sound");
    }
    part.m_stream = input->streams[0];
    part.m_rate = part.m_stream->avg_frame_rate.num > 0 ? part.m_stream->avg_frame_rate : part.m_stream->r_frame_rate;
    if (part.m_rate.num < 1 || part.m_rate.den < 1 || part.m_stream->codecpar->width < 1) {
        return cannotJoin(path, "its frames have no rate or no size");
    }
    return part;
}

bool Part::hasAlpha() const {
    const AVDictionaryEntry* entry = av_dict_get(m_stream->metadata, "alpha_mode", nullptr, 0);
    return entry != nullptr && std::string_view(entry->value) == "1";
}

std::string Part::differenceTo(const Part& first) const {
    const AVCodecParameters& mine = parameters();
    const AVCodecParameters& other = first.parameters();
    if (mine.codec_id != other.codec_id) {
        return "codec";
    }
    if (mine.width != other.width || mine.height != other.height) {
        return "size";
    }
    if (av_cmp_q(m_rate, first.m_rate) != 0) {
        return "frame rate";
    }
    if (mine.format != other.format || hasAlpha() != first.hasAlpha()) {
        return "kind of pixels";
    }
    if (mine.color_range != other.color_range || mine.color_space != other.color_space ||
        mine.color_trc != other.color_trc || mine.color_primaries != other.color_primaries) {
        return "kind of colours";
    }
    const auto settingsOf = [](const AVCodecParameters& parameters) {
        return std::string_view(reinterpret_cast<const char*>(parameters.extradata),
                                static_cast<std::size_t>(std::max(parameters.extradata_size, 0)));
    };
    const bool sameEncoder = mine.profile == other.profile && settingsOf(mine) == settingsOf(other);
    return sameEncoder ? std::string() : "encoder setting";
}

/// Reads a packet unless one waits; false at the end.
Result<bool> Part::read() {
    if (m_isAhead) {
        return true;
    }
    av_packet_unref(m_packet.get());
    const int error = av_read_frame(m_input.get(), m_packet.get());
    if (error == AVERROR_EOF) {
        return false;
    }
    if (error < 0) {
        return cannotJoin(m_path, reasonOf(error));
    }
    if ((m_packet->flags & AV_PKT_FLAG_CORRUPT) != 0 || m_packet->pts == AV_NOPTS_VALUE) {
        return cannotJoin(m_path, "it is damaged");
    }
    if (m_frames == 0) {
        if ((m_packet->flags & AV_PKT_FLAG_KEY) == 0) {
            return cannotJoin(m_path, "its first frame cannot be shown alone");
        }
        m_firstTime = inFrames(m_packet->pts);
    }
    m_isAhead = true;
    return true;
}

Result<std::int64_t> Part::delay() {
    const auto isThere = read();
    if (!isThere || !isThere.value()) {
        return isThere ? cannotJoin(m_path, "it has no frames") : isThere.error();
    }
    return m_packet->dts == AV_NOPTS_VALUE ? 0 : m_firstTime - inFrames(m_packet->dts);
}

Result<AVPacket*> Part::next() {
    const auto isThere = read();
    if (!isThere) {
        return isThere.error();
    }
    if (!isThere.value()) {
        return ended();
    }
    m_isAhead = false;
    m_packet->pts = inFrames(m_packet->pts) - m_firstTime;
    m_packet->dts = AV_NOPTS_VALUE;
    m_lastShown = std::max(m_lastShown, m_packet->pts);
    m_sumOfTimes += m_packet->pts;
    ++m_frames;
    return m_packet.get();
}

/// Whether the frames that were read are 0, 1, 2 and so on, in whatever order, and as many as the file tells of.
bool Part::isWhole() const {
    const bool allShown = m_lastShown == m_frames - 1 && m_sumOfTimes == m_frames * (m_frames - 1) / 2;
    // WebM has a length, in thousandths of a second, in place of a number.
    const std::int64_t length = m_input->duration == AV_NOPTS_VALUE
                                    ? m_frames
                                    : av_rescale_q(m_input->duration, AV_TIME_BASE_Q, av_inv_q(m_rate));
    const bool allThere = m_stream->nb_frames > 0 ? m_frames == m_stream->nb_frames : std::abs(m_frames - length) <= 1;
    return allShown && allThere;
}

Result<AVPacket*> Part::ended() const {
    return isWhole() ? Result<AVPacket*>(nullptr) : cannotJoin(m_path, "frames are missing in it");
}

/// What has to be known before the first packet is written.
struct Plan {
    Part first;
    std::int64_t delay = 0; ///< The largest of all parts.
};

/// Looks at all parts, one open at a time, and tells whether they fit together.
Result<Plan> planFor(std::span<const std::filesystem::path> paths, ContainerKind kind) {
    auto first = Part::open(paths.front(), kind);
    if (!first) {
        return first.error();
    }
    Plan plan{std::move(first).value(), 0};
    for (const auto& path : paths) {
        auto part = Part::open(path, kind);
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

private:
    Result<void> append(AVPacket& packet);

    ContainerKind m_kind;
    ClipContainer m_container;
    std::int64_t m_delay;
    const std::function<bool()>& m_goesOn;
    std::int64_t m_frames = 0;
    std::int64_t m_framesBefore = 0; ///< the part that is being read
};

Result<void> Joining::append(const std::filesystem::path& path) {
    auto part = Part::open(path, m_kind);
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
        return Error{"stopped"};
    }
    packet.pts += m_framesBefore;
    packet.dts = m_frames++ - m_delay;
    return packet.pts < packet.dts ? Error{"its frames are in an order that cannot be kept"}
                                   : m_container.write(packet);
}

Result<JoinedMovie> join(std::span<const std::filesystem::path> paths, ContainerKind kind, const PendingFile& file,
                         const std::function<bool()>& goesOn) {
    const auto plan = planFor(paths, kind);
    if (!plan) {
        return plan.error();
    }
    const Part& first = plan.value().first;
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
                               const std::function<bool()>& goesOn) {
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
    auto joined = join(parts, *kind, file.value(), goesOn);
    if (!joined) {
        return joined;
    }
    if (auto committed = file.value().commit(); !committed) {
        return committed.error();
    }
    return joined;
}

} // namespace starbloom
