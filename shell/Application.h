// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QDeadlineTimer>

#include <stdexcept>

namespace starbloom {

/// The application object: QApplication, and the one place that catches a store that fails under the program.
///
/// Such a failure ends the operation that met it, whatever that was. It is logged each time and shown to the user once
/// a minute at most, since the next slider would most likely meet it again.
class Application final : public QApplication {
    Q_OBJECT

public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

private:
    void tell(const std::runtime_error& failure);

    QDeadlineTimer m_tellAgain{0};
};

} // namespace starbloom
