// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/DriverName.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <string_view>

namespace starbloom {

namespace {

constexpr EGLint contextVersion[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 0, EGL_NONE};

bool has(EGLDisplay display, std::string_view extension) {
    const char* const all = eglQueryString(display, EGL_EXTENSIONS);
    return all != nullptr && std::string_view(all).find(extension) != std::string_view::npos;
}

/// Asks in a context without a surface.
std::string nameIn(EGLDisplay display) {
    using GetString = const unsigned char* (*)(unsigned);
    constexpr unsigned rendererName = 0x1F01;
    const auto getString = reinterpret_cast<GetString>(eglGetProcAddress("glGetString"));
    for (const EGLenum api : {EGL_OPENGL_API, EGL_OPENGL_ES_API}) {
        if (getString == nullptr || eglBindAPI(api) == EGL_FALSE) {
            continue;
        }
        const EGLContext context = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, contextVersion);
        if (context == EGL_NO_CONTEXT) {
            continue;
        }
        std::string name;
        if (eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE) {
            const auto* const text = getString(rendererName);
            name = text != nullptr ? reinterpret_cast<const char*>(text) : "";
            eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        }
        eglDestroyContext(display, context);
        if (!name.empty()) {
            return name;
        }
    }
    return {};
}

} // namespace

Result<std::string> driverName(const std::string& platform) {
    const bool isX11 = platform == "xcb";
    if (!isX11 && !platform.starts_with("wayland")) {
        return std::string();
    }
    if (!has(EGL_NO_DISPLAY, isX11 ? "EGL_KHR_platform_x11" : "EGL_KHR_platform_wayland")) {
        return std::string();
    }
    const EGLDisplay display =
        eglGetPlatformDisplay(isX11 ? EGL_PLATFORM_X11_KHR : EGL_PLATFORM_WAYLAND_KHR, EGL_DEFAULT_DISPLAY, nullptr);
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE) {
        return Error{"the window system has no OpenGL"};
    }
    const bool canAsk = has(display, "EGL_KHR_surfaceless_context") && has(display, "EGL_KHR_no_config_context");
    std::string name = canAsk ? nameIn(display) : std::string();
    eglTerminate(display);
    eglReleaseThread();
    return name;
}

} // namespace starbloom
