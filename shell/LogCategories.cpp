// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LogCategories.h"

#include "base/Log.h"

#include <QLoggingCategory>
#include <QString>

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace starbloom {

namespace {

/// Makes categories as areas turn up, and keeps them and the names they refer to. The log never calls it from two
/// threads at once.
class Categories {
public:
    const QLoggingCategory& of(std::string_view area) {
        const auto [entry, isNew] = m_categories.try_emplace("starbloom." + std::string(area));
        if (isNew) {
            entry->second = std::make_unique<QLoggingCategory>(entry->first.c_str());
        }
        return *entry->second;
    }

private:
    std::map<std::string, std::unique_ptr<QLoggingCategory>> m_categories;
};

} // namespace

void sendLogToCategories() {
    setLogSink(
        [categories = std::make_shared<Categories>()](LogLevel level, std::string_view area, std::string_view message) {
            const QLoggingCategory& category = categories->of(area);
            const auto text = QString::fromUtf8(message.data(), static_cast<qsizetype>(message.size()));
            if (level == LogLevel::Warning) {
                qCWarning(category).noquote() << text;
            } else {
                qCInfo(category).noquote() << text;
            }
        });
}

} // namespace starbloom
