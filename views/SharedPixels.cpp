// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/SharedPixels.h"

#include <QGuiApplication>
#include <qguiapplication_platform.h>

#include <cstdlib>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

namespace starbloom {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, Free>;

} // namespace

std::unique_ptr<SharedPixels> SharedPixels::create(std::uint32_t window, const QSize& size) {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->connection() == nullptr || size.isEmpty()) {
        return nullptr;
    }
    xcb_connection_t* const connection = x11->connection();
    const auto* const extension = xcb_get_extension_data(connection, &xcb_shm_id);
    const ReplyPointer<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    if (extension == nullptr || extension->present == 0 || geometry == nullptr ||
        (geometry->depth != 24 && geometry->depth != 32)) {
        return nullptr;
    }
    const auto bytesPerRow = static_cast<std::size_t>(size.width()) * 4;
    const int memory = shmget(IPC_PRIVATE, bytesPerRow * static_cast<std::size_t>(size.height()), IPC_CREAT | 0600);
    if (memory < 0) {
        return nullptr;
    }
    void* const address = shmat(memory, nullptr, 0);
    std::unique_ptr<SharedPixels> result;
    if (address != reinterpret_cast<void*>(-1)) {
        const std::uint32_t segment = xcb_generate_id(connection);
        const ReplyPointer<xcb_generic_error_t> error(xcb_request_check(
            connection, xcb_shm_attach_checked(connection, segment, static_cast<std::uint32_t>(memory), 1)));
        if (error == nullptr) {
            result.reset(new SharedPixels);
            result->m_connection = connection;
            result->m_window = window;
            result->m_segment = segment;
            result->m_context = xcb_generate_id(connection);
            xcb_create_gc(connection, result->m_context, window, 0, nullptr);
            result->m_depth = geometry->depth;
            result->m_target = {static_cast<std::uint8_t*>(address), bytesPerRow, size.width(), size.height(),
                                PixelOrder::Bgra};
        } else {
            shmdt(address);
        }
    }
    shmctl(memory, IPC_RMID, nullptr); // It goes when both have let go of it, however they end.
    return result;
}

SharedPixels::~SharedPixels() {
    xcb_free_gc(m_connection, m_context);
    xcb_shm_detach(m_connection, m_segment);
    shmdt(m_target.pixels);
}

void SharedPixels::show(std::span<const PixelRect> rects, int left, int top) const {
    for (const PixelRect& each : rects) {
        xcb_shm_put_image(m_connection, m_window, m_context, static_cast<std::uint16_t>(m_target.width),
                          static_cast<std::uint16_t>(m_target.height), static_cast<std::uint16_t>(each.x),
                          static_cast<std::uint16_t>(each.y), static_cast<std::uint16_t>(each.width),
                          static_cast<std::uint16_t>(each.height), static_cast<std::int16_t>(left + each.x),
                          static_cast<std::int16_t>(top + each.y), m_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, m_segment, 0);
    }
    xcb_flush(m_connection);
}

void SharedPixels::waitUntilShown() const {
    const ReplyPointer<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

} // namespace starbloom
