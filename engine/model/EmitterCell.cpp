// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/model/EmitterCell.h"

#include <algorithm>
#include <array>
#include <variant>

namespace starbloom {

namespace {

struct NumericProperty {
    std::string_view name;
    std::variant<float EmitterCell::*, double EmitterCell::*> member;
};

constexpr std::array numericProperties{
    NumericProperty{"birthRate", &EmitterCell::birthRate},
    NumericProperty{"lifetime", &EmitterCell::lifetime},
    NumericProperty{"velocity", &EmitterCell::velocity},
    NumericProperty{"velocityRange", &EmitterCell::velocityRange},
    NumericProperty{"yAcceleration", &EmitterCell::yAcceleration},
    NumericProperty{"emissionLongitude", &EmitterCell::emissionLongitude},
    NumericProperty{"emissionLatitude", &EmitterCell::emissionLatitude},
    NumericProperty{"emissionRange", &EmitterCell::emissionRange},
    NumericProperty{"scale", &EmitterCell::scale},
    NumericProperty{"scaleRange", &EmitterCell::scaleRange},
    NumericProperty{"scaleSpeed", &EmitterCell::scaleSpeed},
    NumericProperty{"spin", &EmitterCell::spin},
    NumericProperty{"redRange", &EmitterCell::redRange},
    NumericProperty{"greenRange", &EmitterCell::greenRange},
    NumericProperty{"blueRange", &EmitterCell::blueRange},
    NumericProperty{"redSpeed", &EmitterCell::redSpeed},
    NumericProperty{"greenSpeed", &EmitterCell::greenSpeed},
    NumericProperty{"blueSpeed", &EmitterCell::blueSpeed},
    NumericProperty{"alphaSpeed", &EmitterCell::alphaSpeed},
    NumericProperty{"beginTime", &EmitterCell::beginTime},
    NumericProperty{"duration", &EmitterCell::duration},
};

const NumericProperty* findProperty(std::string_view name) {
    const auto* found = std::ranges::find(numericProperties, name, &NumericProperty::name);
    return found == numericProperties.end() ? nullptr : found;
}

} // namespace

void EmitterCell::setValue(double value, std::string_view property) {
    if (const auto* numeric = findProperty(property)) {
        std::visit(
            [&](auto member) { this->*member = static_cast<std::remove_reference_t<decltype(this->*member)>>(value); },
            numeric->member);
        return;
    }
    extraAttributes.insert_or_assign(std::string(property), value);
}

std::optional<double> EmitterCell::value(std::string_view property) const {
    if (const auto* numeric = findProperty(property)) {
        return std::visit([&](auto member) { return static_cast<double>(this->*member); }, numeric->member);
    }
    const auto extra = extraAttributes.find(property);
    return extra == extraAttributes.end() ? std::nullopt : std::optional(extra->second);
}

EmitterCell* findCell(const std::vector<std::unique_ptr<EmitterCell>>& cells, std::string_view name) {
    if (name.empty()) {
        return nullptr;
    }
    const auto found = std::ranges::find_if(cells, [&](const auto& cell) { return cell->name == name; });
    return found == cells.end() ? nullptr : found->get();
}

} // namespace starbloom
