// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/PrintSystem.h"

#include <QCoreApplication>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace starbloom {

namespace {

/// Points. Paper has little margin to lose where there is only one page.
constexpr double topMargin = 3.0;

/// The toolkit's printing, which knows the printers of the desktop and can always write a PDF.
class ToolkitPrinting final : public PrintSystem {
public:
    ToolkitPrinting() { m_printer.setDocName(QCoreApplication::applicationName()); }

    bool printPlain(QWidget& window, Finished finished) override {
        if (!m_printer.isValid()) {
            return false;
        }
        setTopMargin();
        show(
            new QPrintDialog(&m_printer, &window), [this] { print({}); }, std::move(finished));
        return true;
    }

    bool setUpPage(QWidget& window, Finished finished) override {
        if (!m_printer.isValid()) {
            return false;
        }
        show(
            new QPageSetupDialog(&m_printer, &window), [] {}, std::move(finished));
        return true;
    }

private:
    static void show(QDialog* panel, std::function<void()> accepted, Finished finished) {
        panel->setAttribute(Qt::WA_DeleteOnClose);
        QObject::connect(panel, &QDialog::accepted, std::move(accepted));
        QObject::connect(panel, &QDialog::finished, std::move(finished));
        // Not as a sheet: see openModal().
        panel->setWindowModality(Qt::ApplicationModal);
        panel->show();
    }

    void setTopMargin() {
        QPageLayout layout = m_printer.pageLayout();
        layout.setUnits(QPageLayout::Point);
        layout.setTopMargin(std::max(topMargin, layout.minimumMargins().top())); // Less the printer would refuse.
        m_printer.setPageLayout(layout);
    }

    void print(const QString& text) {
        QTextDocument document;
        document.setDefaultFont(QFont(QStringLiteral("Courier"), 12));
        document.setDocumentMargin(0.0);
        document.setPlainText(text);
        document.setPageSize(m_printer.pageRect(QPrinter::Point).size());
        document.print(&m_printer);
    }

    QPrinter m_printer{QPrinter::HighResolution}; ///< Keeps what was chosen for the next time.
};

} // namespace

} // namespace starbloom

/// The door of the module.
extern "C" [[gnu::visibility("default")]] starbloom::PrintSystem* starbloomPrinting() {
    return new starbloom::ToolkitPrinting;
}
