#include "app/sample_folder.h"

#include <QDir>
#include <QFileInfo>

namespace torquil {

QString sampleFolderBeside(const QString& appDir, const QString& currentDir) {
    const QDir app(appDir);
    const QStringList candidates = {app.filePath(QStringLiteral("samples")),
                                    app.filePath(QStringLiteral("../share/torquil/samples")),
                                    app.filePath(QStringLiteral("../../../samples")),
                                    QDir(currentDir).filePath(QStringLiteral("samples"))};
    for (const QString& folder : candidates)
        if (QFileInfo::exists(QDir(folder).filePath(QStringLiteral("STYLE001.G24"))))
            return QDir::cleanPath(QDir(folder).absolutePath());
    return {};
}

} // namespace torquil
