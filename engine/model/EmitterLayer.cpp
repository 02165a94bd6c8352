// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/model/EmitterLayer.h"

#include <utility>

namespace starbloom {

namespace {

/// Splits "a.b.c" into "a" and "b.c"; the rest of a path without a dot is empty.
std::pair<std::string_view, std::string_view> splitFirst(std::string_view path) {
    const auto dot = path.find('.');
    if (dot == std::string_view::npos) {
        return {path, {}};
    }
    return {path.substr(0, dot), path.substr(dot + 1)};
}

struct ResolvedPath {
    EmitterCell* cell = nullptr; ///< Null when the path leads to no cell.
    std::string_view property;
};

ResolvedPath resolve(const EmitterLayer& layer, std::string_view keyPath) {
    if (keyPath.ends_with('.')) {
        return {}; // Would look like its part before the dot below.
    }
    const auto* cells = &layer.emitterCells;
    EmitterCell* cell = nullptr;
    for (;;) {
        const auto [key, afterKey] = splitFirst(keyPath);
        if (key != "emitterCells" || afterKey.empty()) {
            const bool isProperty = cell != nullptr && afterKey.empty() && !key.empty() && key != "emitterCells";
            return isProperty ? ResolvedPath{cell, key} : ResolvedPath{};
        }
        const auto [name, afterName] = splitFirst(afterKey);
        cell = findCell(*cells, name);
        if (cell == nullptr) {
            return {};
        }
        cells = &cell->emitterCells;
        keyPath = afterName;
    }
}

} // namespace

bool EmitterLayer::setValue(double value, std::string_view keyPath) {
    const auto [cell, property] = resolve(*this, keyPath);
    if (cell == nullptr) {
        return false;
    }
    cell->setValue(value, property);
    return true;
}

std::optional<double> EmitterLayer::value(std::string_view keyPath) const {
    const auto [cell, property] = resolve(*this, keyPath);
    return cell == nullptr ? std::nullopt : std::as_const(*cell).value(property);
}

} // namespace starbloom
