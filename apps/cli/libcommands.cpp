// SPDX-License-Identifier: MIT
// tessal-cli lib: list, dump and upgrade over TLibManager.
#include "libcommands.h"

#include "dump.h"

#include <tessal/persistence/library.h>

namespace tessal::Cli {

namespace {

// Reads an entry; with linkPointsOnly its link point shapes give their link points instead.
bool ReadEntry(TLibManager &library, const QString &name, bool linkPointsOnly,
               TMyPointArray &linkPoints, TUserData &userData, TLibManager::TShapeList &shapes,
               std::int32_t &width, std::int32_t &height, QString &error)
{
    if (library.GetCmbShape(name, linkPointsOnly, linkPoints, userData, shapes, width, height))
        return true;
    error = library.LastError().isEmpty()
                ? QStringLiteral("%1: no entry named \"%2\"").arg(library.FileName(), name)
                : QStringLiteral("%1: %2").arg(library.FileName(), library.LastError());
    return false;
}

int List(TLibManager &library, TIo io)
{
    io.Out << "tag: " << library.ReadLibTag() << '\n';
    const std::int32_t count = library.GetcmbShapesCount();
    io.Out << "entries: " << count << '\n';
    for (std::int32_t i = 0; i < count; ++i) {
        const QString name = library.GetCmbShapesNameByID(i);
        TMyPointArray linkPoints;
        TUserData userData;
        TLibManager::TShapeList shapes;
        std::int32_t width = 0;
        std::int32_t height = 0;
        QString error;
        if (!ReadEntry(library, name, false, linkPoints, userData, shapes, width, height, error)) {
            io.Out.flush();
            return Fail(io, error);
        }
        io.Out << "  \"" << name << "\" " << width << " x " << height << ", " << shapes.size()
               << " shapes, " << userData.GetCount() << " user data\n";
    }
    io.Out.flush();
    return ExitOk;
}

int Upgrade(TLibManager &library, const QString &out, TIo io)
{
    const QString from = library.ReadLibTag();
    const bool ok = library.Upgradefromx6tox8() && library.Upgradefromx8tox9() &&
                    library.Upgradefromx9toxa() && library.Upgradefromxatoxe() &&
                    library.Upgradefromxetoxh() && library.Upgradefromxhtoxi() &&
                    library.Upgradefromxitoxj();
    if (!ok)
        return Fail(io, QStringLiteral("%1: %2").arg(library.FileName(), library.LastError()));
    if (!library.SaveToFile(out))
        return Fail(io, QStringLiteral("%1: %2").arg(out, library.LastError()));
    io.Out << "upgraded " << library.FileName() << " from " << from << " to "
           << library.ReadLibTag() << " (" << library.GetcmbShapesCount() << " entries) into "
           << out << '\n';
    io.Out.flush();
    return ExitOk;
}

} // namespace

bool LoadLibrary(TLibManager &library, const QString &fileName, QString &error)
{
    if (IsOLDZEDALibFile(fileName)) {
        error = QStringLiteral("%1: the old library layout \"ZEDALIB2.1\" cannot be read")
                    .arg(fileName);
        return false;
    }
    if (!library.LoadFromFile(fileName)) {
        error = QStringLiteral("%1: %2").arg(fileName, library.LastError());
        return false;
    }
    if (LibRecordVersion(library.Buffer().left(10)).isEmpty()) {
        error = QStringLiteral("%1 is not a shape library").arg(fileName);
        return false;
    }
    return true;
}

bool EntryJson(TLibManager &library, const QString &name, TJson &json, QString &error)
{
    // Read twice: once for every record as a shape, once for the link points that placing
    // the entry offers, exactly as the library reader collects them.
    TMyPointArray linkPoints;
    TUserData userData;
    TLibManager::TShapeList shapes;
    std::int32_t width = 0;
    std::int32_t height = 0;
    if (!ReadEntry(library, name, false, linkPoints, userData, shapes, width, height, error))
        return false;
    {
        TUserData ignoredData;
        TLibManager::TShapeList ignoredShapes;
        std::int32_t ignoredWidth = 0;
        std::int32_t ignoredHeight = 0;
        if (!ReadEntry(library, name, true, linkPoints, ignoredData, ignoredShapes, ignoredWidth,
                       ignoredHeight, error))
            return false;
    }
    json = TJson::Object();
    json.Insert(QStringLiteral("Name"), TJson::String(name));
    json.Insert(QStringLiteral("Tag"), TJson::String(library.ReadLibTag()));
    json.Insert(QStringLiteral("Width"), TJson::Integer(width));
    json.Insert(QStringLiteral("Height"), TJson::Integer(height));
    json.Insert(QStringLiteral("UserData"), UserDataJson(userData));
    json.Insert(QStringLiteral("LinkPoints"), PointsJson(linkPoints));
    TJson list = TJson::Array();
    for (const auto &shape : shapes)
        list.Append(ShapeJson(*shape));
    json.Insert(QStringLiteral("Shapes"), std::move(list));
    return true;
}

int RunLib(const QStringList &args, TIo io)
{
    const QString command = args.value(0);
    const bool wellFormed =
        (command == QLatin1String("list") && args.size() == 2) ||
        (command == QLatin1String("dump") && args.size() == 3) ||
        (command == QLatin1String("upgrade") && (args.size() == 2 || args.size() == 3));
    if (!wellFormed)
        return Usage(io);
    TLibManager library;
    QString error;
    if (!LoadLibrary(library, args[1], error))
        return Fail(io, error);
    if (command == QLatin1String("list"))
        return List(library, io);
    if (command == QLatin1String("upgrade"))
        return Upgrade(library, args.value(2, args[1]), io);
    TJson json;
    if (!EntryJson(library, args[2], json, error))
        return Fail(io, error);
    io.Out << QString::fromUtf8(json.ToText());
    io.Out.flush();
    return ExitOk;
}

} // namespace tessal::Cli
