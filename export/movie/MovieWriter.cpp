// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieWriter.h"

#include "base/Log.h"
#include "base/PendingFile.h"
#include "export/movie/MovieContainer.h"
#include "export/movie/MovieEncoder.h"

#include <cassert>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace starbloom {

/// The encoder, and the files of one movie: the hidden one that takes the target's place in the end, and for a movie
/// that survives a kill the fragmented one that it is made from.
class MovieWriter::Encoding {
public:
    Encoding(MovieEncoder encoder, PendingFile file, int framesPerSecond, MovieWriterOptions options)
        : m_encoder(std::move(encoder))
        , m_file(std::move(file))
        , m_framesPerSecond(framesPerSecond)
        , m_options(std::move(options)) {}

    Result<void> open();

    Result<void> addFrame(const ImageBuffer& image) { return named(m_encoder.encode(image, sink())); }

    Result<void> finish();

    const std::filesystem::path& partPath() const { return growing().temporaryPath(); }

    const std::filesystem::path& finalPath() const { return m_file.temporaryPath(); }

private:
    const PendingFile& growing() const { return m_part ? *m_part : m_file; }

    MovieEncoder::PacketSink sink();
    Result<void> commitRegular();
    Result<void> commitPart(const Error& error);
    bool isWanted();
    Result<void> named(Result<void> result) const;

    Error failure(const std::string& reason) const {
        return Error{"cannot write " + m_file.target().string() + ": " + reason};
    }

    MovieEncoder m_encoder;
    PendingFile m_file;
    std::optional<PendingFile> m_part;
    int m_framesPerSecond;
    MovieWriterOptions m_options;
    std::optional<MovieContainer> m_container;
    bool m_isGivenUp = false; ///< Since all frames were written.
};

/// Puts the target's name before a reason.
Result<void> MovieWriter::Encoding::named(Result<void> result) const {
    return result ? result : failure(result.error().message);
}

Result<void> MovieWriter::Encoding::open() {
    if (m_options.survivesKill) {
        auto part = PendingFile::create(m_file.target());
        if (!part) {
            return part.error();
        }
        m_part = std::move(part).value();
    }
    PointerTo<AVCodecParameters, avcodec_parameters_free> parameters(avcodec_parameters_alloc());
    if (parameters == nullptr || avcodec_parameters_from_context(parameters.get(), &m_encoder.context()) < 0) {
        return failure(reasonOf(AVERROR(ENOMEM)));
    }
    const auto layout = m_part ? MovieLayout::Fragmented : MovieLayout::Regular;
    auto container = MovieContainer::open(partPath(), *parameters, m_framesPerSecond, layout);
    if (!container) {
        return failure(container.error().message);
    }
    m_container = std::move(container).value();
    return {};
}

MovieEncoder::PacketSink MovieWriter::Encoding::sink() {
    return [this](AVPacket& packet) -> Result<void> {
        auto written = m_container->write(packet);
        if (written && m_options.frameWritten && !m_options.frameWritten(m_container->writtenFrames())) {
            return Error{"stopped"};
        }
        return written;
    };
}

Result<void> MovieWriter::Encoding::finish() {
    if (m_encoder.frameCount() == 0) {
        return failure("the movie has no frames");
    }
    if (auto drained = m_encoder.drain(sink()); !drained) {
        return named(drained);
    }
    if (auto finished = m_container->finish(); !finished) {
        return named(finished);
    }
    auto done = commitRegular();
    if (!done && m_part && !m_isGivenUp) {
        done = commitPart(done.error());
    }
    m_part.reset();
    return done;
}

Result<void> MovieWriter::Encoding::commitRegular() {
    if (m_part) {
        const auto copied = copyMovie(m_part->temporaryPath(), m_file.temporaryPath(), m_framesPerSecond,
                                      [this] { return isWanted(); });
        if (!copied) {
            return failure(copied.error().message);
        }
        // Another program may have been at the file meanwhile.
        if (copied.value() != m_encoder.frameCount()) {
            return failure("only " + std::to_string(copied.value()) + " of " + std::to_string(m_encoder.frameCount()) +
                           " frames could be read back");
        }
        if (!isWanted()) {
            return failure("stopped");
        }
    }
    return m_file.commit();
}

/// Makes do with the fragments, as there was no room for the movie a second time, most likely. They have to hold all
/// frames; otherwise the error is why there is no regular file.
Result<void> MovieWriter::Encoding::commitPart(const Error& error) {
    // What there is of the copy may stand in the way of what the disk has not got yet.
    std::error_code ignored;
    std::filesystem::resize_file(m_file.temporaryPath(), 0, ignored);
    auto reader = MovieReader::open(m_part->temporaryPath(), m_framesPerSecond);
    std::int64_t frames = 0;
    while (reader && isWanted() && reader.value().next() != nullptr) {
        ++frames;
    }
    if (frames != m_encoder.frameCount() || !isWanted()) {
        return error;
    }
    log(LogLevel::Warning, "export", error.message + "; the movie stays in fragments");
    return m_part->commit();
}

bool MovieWriter::Encoding::isWanted() {
    m_isGivenUp = m_isGivenUp || (m_options.frameWritten && !m_options.frameWritten(m_encoder.frameCount()));
    return !m_isGivenUp;
}

Result<MovieWriter> MovieWriter::create(const std::filesystem::path& target, const MovieFormat& format,
                                        MovieWriterOptions options) {
    auto encoder = MovieEncoder::open(format);
    if (!encoder) {
        return Error{"cannot write " + target.string() + ": " + encoder.error().message};
    }
    auto file = PendingFile::create(target);
    if (!file) {
        return file.error();
    }
    auto encoding = std::make_unique<Encoding>(std::move(encoder).value(), std::move(file).value(),
                                               format.framesPerSecond, std::move(options));
    if (auto opened = encoding->open(); !opened) {
        return opened.error();
    }
    return MovieWriter(std::move(encoding));
}

MovieWriter::MovieWriter(std::unique_ptr<Encoding> encoding)
    : m_encoding(std::move(encoding)) {}

MovieWriter::MovieWriter(MovieWriter&& other) noexcept = default;
MovieWriter& MovieWriter::operator=(MovieWriter&& other) noexcept = default;
MovieWriter::~MovieWriter() = default;

Result<void> MovieWriter::addFrame(const ImageBuffer& image) {
    assert(m_encoding != nullptr);
    return m_encoding->addFrame(image);
}

Result<void> MovieWriter::finish() {
    assert(m_encoding != nullptr);
    return m_encoding->finish();
}

const std::filesystem::path& MovieWriter::partPath() const {
    return m_encoding->partPath();
}

const std::filesystem::path& MovieWriter::finalPath() const {
    return m_encoding->finalPath();
}

} // namespace starbloom
