// SPDX-License-Identifier: MIT
// A drawing file read into memory before it replaces anything, so that a load the user
// cancels leaves the drawing as it was.
#pragma once

#include <tessal/platform/binarystream.h>
#include <tessal/platform/bitmap.h>
#include <tessal/platform/types.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QString>

#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace tessal {

// Raised when OnProgress cancels; readers and writers catch it at their boundary.
class TLoadCancelled : public std::runtime_error
{
public:
    TLoadCancelled()
        : std::runtime_error("cancelled")
    {}
};

struct TDrawingSettings
{
    QString Version;
    TColor Background = 0;
    std::int32_t Width = 0;
    std::int32_t Height = 0;
    TUnits Unit = TUnits::mm;
    TBitmap Picture;
    TBkBitmapMode PictureMode = TBkBitmapMode(0);
    double Ratio = 1;
    // Only layouts since XP.h store the drawing's Tag and user data.
    bool HasUserData = false;
    std::int32_t Tag = 0;
    std::vector<TUserDataRecord> UserData;
};

struct TLoadedDrawing
{
    // Each part is set once it was read completely.
    std::optional<TDrawingSettings> Settings;
    std::optional<std::vector<TLayer>> Layers;
    std::int32_t CurrentLayerId = 0;
    std::int32_t LayerIdCounter = 0;
    std::vector<std::unique_ptr<TMyShape>> Shapes;
    // The next free shape identity, known only when every shape was read.
    std::optional<std::int32_t> ShapeIdCounter;
};

// The header and the drawing's own settings; throws TStreamError on bytes no writer makes.
TDrawingSettings ReadDrawingSettingsOnly(BinaryStream &stream);

} // namespace tessal
