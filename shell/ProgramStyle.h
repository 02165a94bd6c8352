// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace starbloom {

/// The desktop's style, with the icons that the toolkit asks for at launch drawn by ourselves. GUI thread.
class ProgramStyle : public QProxyStyle {
    Q_OBJECT

public:
    /// The name is a style's, as QStyleFactory knows it.
    explicit ProgramStyle(const QString& name);

    /// A menu bar asks for its overflow button's icon when it is made. The toolkit's own is a file whose type is found
    /// by loading every image plugin of the system, which takes a tenth of the launch.
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option = nullptr,
                       const QWidget* widget = nullptr) const override;
};

} // namespace starbloom
