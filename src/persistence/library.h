// SPDX-License-Identifier: MIT
// Shape libraries: files of named, reusable entries of shapes stored relative to their box.
#pragma once

#include <tessal/geometry/mypoint.h>
#include <tessal/platform/bitmap.h>
#include <tessal/platform/color.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/userdata.h>
#include <tessal/surface/cadevents.h>

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tessal {

class TMyCAD;

// Tag tests: true when the file starts with at least 10 bytes equal to one of the tags. The
// general test leaves out ".i" and ".e", which only their own tests recognise.
bool IsZEDALibFile(const QString &fileName);
bool IsZEDALibX2File(const QString &fileName);
bool IsZEDALibFileX67(const QString &fileName);
bool IsZEDALibFileX8(const QString &fileName);
bool IsZEDALibFileX9(const QString &fileName);
bool IsZEDALibFileXA(const QString &fileName);
bool IsZEDALibFileXE(const QString &fileName);
bool IsZEDALibFileXH(const QString &fileName);
bool IsZEDALibFileXI(const QString &fileName);
bool IsOLDZEDALibFile(const QString &fileName);

// The record version by which the shapes of a library with this tag are read; empty for a
// tag outside the table. "ZEDALIBX.3" libraries hold "XP.4" records.
QString LibRecordVersion(const QByteArray &tag);

// A library held as one byte buffer: the 10-byte tag, then entries back to back, each
//   name length (byte), name (ANSI), entry size (int32, the bytes that follow it),
//   width, height (int32), [user data count and pairs, ".j" only], shape count (int32),
//   shapes (16-byte class name, shape record).
// Shape coordinates are stored as fractions of the entry's box (shapes other than link
// points), whose width and height are whole units, at least 1.
//
// Failures answer false (or an empty result) and LastError() says why; a damaged buffer
// never crashes a reader. Edits keep every other entry byte-identical.
//
// Shapes handed out by the readers are created for the manager's hidden drawing, which
// must therefore outlive them.
class TLibManager
{
public:
    using TShapeList = std::vector<std::unique_ptr<TMyShape>>;

    // An empty library holding only the tag "ZEDALIBX.j".
    TLibManager();
    // Loads the file (see LoadFromFile); an unreadable or damaged file leaves the empty
    // library and LastError() set.
    explicit TLibManager(const QString &fileName);
    ~TLibManager();
    TLibManager(const TLibManager &) = delete;
    TLibManager &operator=(const TLibManager &) = delete;

    // Replaces the buffer with the file's bytes and remembers the name. False, with the
    // library unchanged, when the file cannot be read or its entries are not framed
    // correctly (a name or an entry size running past the end).
    bool LoadFromFile(const QString &fileName);
    // The same check on bytes already in memory; the file name is kept.
    bool LoadFromBuffer(const QByteArray &bytes);
    // Takes the file's bytes as they are, only when IsOLDZEDALibFile accepts it.
    bool LoadFromOldFile(const QString &fileName);
    // Rewrites the tag as "ZEDALIBX.j", then writes the whole buffer through a temporary
    // file. Entries of an older library must be upgraded first, or they keep their layout
    // under the new tag.
    bool SaveToFile(const QString &fileName);
    // Empties the library down to the tag.
    void Clear();

    // The tag (its 10 bytes as text), length 10 and position 10; an empty text, 0 and -1
    // for a buffer shorter than 10 bytes. Sets the hidden drawing's record version from it.
    QString ReadLibTag(std::int32_t &length, std::int64_t &position);
    QString ReadLibTag();
    // Puts the tag "ZEDALIBX.j" in front of a buffer that has none.
    void WriteLibTag();
    // Overwrites the first 10 bytes with "ZEDALIBX.j" (or writes them into a tagless buffer).
    void ReplaceoldTagwithNewTag();

    // Number of entries; counting stops at the first damaged one (LastError() set).
    std::int32_t GetcmbShapesCount();
    // Name of the entry at the 0-based index; empty when there is none.
    QString GetCmbShapesNameByID(std::int32_t index);
    // Whether an entry of exactly this name exists, with its start and total size in bytes.
    bool GetExistShape(const QString &name, std::int64_t &position, std::int64_t &size);

    // Reads an entry: shapes at nominal size, the box's top-left corner at (0, 0). With
    // linkPointsOnly, link point shapes are not returned as shapes: their link points go to
    // linkPoints instead. The user data block is read only from ".j" libraries. Outputs are
    // left empty on failure.
    bool GetCmbShape(const QString &name, bool linkPointsOnly, TMyPointArray &linkPoints,
                     TUserData &userData, TShapeList &shapes, std::int32_t &width,
                     std::int32_t &height);
    // The same reader with the record version of the named older tag and no user data.
    bool GetCmbShapeforX8(const QString &name, bool linkPointsOnly, TMyPointArray &linkPoints,
                          TUserData &userData, TShapeList &shapes, std::int32_t &width,
                          std::int32_t &height);
    bool GetCmbShapeforX9(const QString &name, bool linkPointsOnly, TMyPointArray &linkPoints,
                          TUserData &userData, TShapeList &shapes, std::int32_t &width,
                          std::int32_t &height);
    bool GetCmbShapeforXA(const QString &name, bool linkPointsOnly, TMyPointArray &linkPoints,
                          TUserData &userData, TShapeList &shapes, std::int32_t &width,
                          std::int32_t &height);
    bool GetCmbShapeforXE(const QString &name, bool linkPointsOnly, TMyPointArray &linkPoints,
                          TUserData &userData, TShapeList &shapes, std::int32_t &width,
                          std::int32_t &height);
    bool GetCmbShapeforXH(const QString &name, bool linkPointsOnly, TMyPointArray &linkPoints,
                          TUserData &userData, TShapeList &shapes, std::int32_t &width,
                          std::int32_t &height);
    bool GetCmbShapeforXI(const QString &name, bool linkPointsOnly, TMyPointArray &linkPoints,
                          TUserData &userData, TShapeList &shapes, std::int32_t &width,
                          std::int32_t &height);

    // A preview of the entry: its shapes scaled uniformly to fit size less a 2-pixel margin,
    // centred, on the background colour. A null image when the entry cannot be read.
    QImage GetCmbShapeImage(const QString &name, QSize size, TColor background = clWhite);
    bool GetCmbShapeImage(const QString &name, TBitmap &bitmap, std::int32_t width,
                          std::int32_t height, TColor background = clWhite);

    // A new entry at a byte position where an entry starts (or the end of the buffer). The
    // shapes are written relative to their box with their names cleared; they are left as
    // they were. False for an empty, duplicate or over-long name (more than 255 ANSI bytes,
    // or characters the code page cannot hold).
    bool InsertNewShape(std::int64_t position, const QString &name,
                        std::span<TMyShape *const> shapes, const TUserData &userData);
    bool AppendNewShape(const QString &name, std::span<TMyShape *const> shapes,
                        const TUserData &userData);
    bool DeleteShape(const QString &name);
    bool RenameCmbShapeName(const QString &oldName, const QString &newName);
    // Moves the entry name to just before the entry beforeName.
    bool MoveCmbShapeBeforeByName(const QString &name, const QString &beforeName);
    // Writes the entry anew in the current layout, in its place and under its name.
    bool RepalceExistShape(const QString &name, std::span<TMyShape *const> shapes,
                           const TUserData &userData);

    // Each step rewrites every entry of a library of its source tag in the current layout
    // and sets the tag "ZEDALIBX.j"; a library of another tag is left alone (true), so that
    // the steps applied in order bring any library up to date. The first step takes ".2",
    // ".3", ".6" and ".7". A read error leaves the library unchanged (false).
    bool Upgradefromx6tox8();
    bool Upgradefromx8tox9();
    bool Upgradefromx9toxa();
    bool Upgradefromxatoxe();
    bool Upgradefromxetoxh();
    bool Upgradefromxhtoxi();
    bool Upgradefromxitoxj();

    // Reading an entry (GetCmbShape and the older readers, placing an entry, each step of an
    // upgrade) reports its shapes read so far; the sender is the hidden drawing. A cancel
    // makes the read fail with nothing handed out and the library unchanged.
    void SetOnProgress(const TProgressEvent &handler);
    const TProgressEvent &OnProgress() const;

    const QString &FileName() const { return m_FileName; }
    const QByteArray &Buffer() const { return m_Buffer; }
    const QString &LastError() const { return m_LastError; }
    // The hidden drawing that creates the shapes and holds the record version.
    const TMyCAD &Drawing() const { return *m_Drawing; }

private:
    struct Entry
    {
        std::int64_t Position = 0;
        std::int64_t Size = 0; // name length byte to the last byte
        QString Name;
    };
    struct Contents
    {
        TMyPointArray LinkPoints;
        TUserData UserData;
        TShapeList Shapes;
        std::int32_t Width = 0;
        std::int32_t Height = 0;
    };

    // The entries in file order; false and LastError() at the first damaged one, with the
    // entries before it kept.
    bool Walk(std::vector<Entry> &entries);
    bool Find(const QString &name, Entry &entry);
    // Calls the progress handler; throws TLoadCancelled when it cancels.
    void Report(std::int64_t done, std::int64_t total);
    bool ReadEntry(const Entry &entry, const QString &version, bool userDataBlock,
                   bool linkPointsOnly, Contents &out);
    bool ReadNamed(const QString &name, const QString &version, bool userDataBlock,
                   bool linkPointsOnly, TMyPointArray &linkPoints, TUserData &userData,
                   TShapeList &shapes, std::int32_t &width, std::int32_t &height);
    // The complete bytes of an entry, or an empty array (LastError() set).
    QByteArray BuildEntry(const QString &name, std::span<TMyShape *const> shapes,
                          const TUserData &userData);
    bool CheckNewName(const QString &name, QByteArray &ansi);
    bool Upgrade(std::initializer_list<const char *> fromTags, const QString &version);

    QString m_FileName;
    QByteArray m_Buffer;
    std::unique_ptr<TMyCAD> m_Drawing;
    QString m_LastError;
};

} // namespace tessal
