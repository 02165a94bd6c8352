// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <filesystem>
#include <string_view>

namespace starbloom {

/// Which renderer the user wants for the screen.
enum class RendererChoice {
    Automatic, ///< OpenGL where there is a graphics processor, else the CPU.
    Raster,    ///< The CPU.
    OpenGl,    ///< OpenGL on whatever there is.
};

/// The name of the environment's variable.
constexpr const char* rendererVariable = "STARBLOOM_RENDERER";

/// What its value says: raster, opengl or auto. Anything else is automatic; `known` tells.
RendererChoice rendererChoice(const QByteArray& value, bool* known = nullptr);

/// Whether an OpenGL renderer of that name is a program that runs on the CPU. Ours does that better.
bool isSoftwareRenderer(std::string_view name);

/// Whether the machine has any device that a graphics processor's driver opens, in the folder of its devices. Costs
/// nothing, while asking OpenGL loads its libraries.
bool hasGraphicsDevice(const std::filesystem::path& devices = "/dev");

} // namespace starbloom
