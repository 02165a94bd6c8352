// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/KeyValueStore.h"
#include "tests/support/LogCapture.h"

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace starbloom {

namespace {

QMessageBox* alert() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QStringLiteral("storeFailure") && widget->isVisible()) {
            return qobject_cast<QMessageBox*>(widget);
        }
    }
    return nullptr;
}

TEST(Application, AFailingStoreIsLoggedEachTimeAndShownOnce) {
    LogCapture log;
    int failures = 0;
    const auto fail = [&] {
        QTimer::singleShot(0, qApp, [&] {
            ++failures;
            throw StoreFailure("Error while creating update statement. 'gone'");
        });
    };
    fail();
    ASSERT_TRUE(QTest::qWaitFor([] { return alert() != nullptr; }));
    EXPECT_TRUE(alert()->informativeText().contains(QStringLiteral("'gone'")));
    alert()->accept();
    fail();
    EXPECT_TRUE(QTest::qWaitFor([&] { return failures == 2; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(alert(), nullptr);
    EXPECT_EQ(QString::fromStdString(log.text()).count(QStringLiteral("'gone'")), 2);
}

} // namespace

} // namespace starbloom
