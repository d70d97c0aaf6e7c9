// SPDX-License-Identifier: MIT
// The byte formats every stored record is built from: counted texts, fixed-width texts, bitmaps.
#pragma once

#include <tessal/platform/binarystream.h>
#include <tessal/platform/bitmap.h>

#include <QString>

#include <cstdint>

namespace tessal {

// Stored texts are 8-bit. A counted text is an int32 length followed by (length mod 256)
// bytes: the length keeps the full size of the text while only its first (length mod 256)
// characters follow, each as the low byte of its UTF-16 code unit. Older readers depend on
// exactly these bytes, so writers must not "fix" the truncation.

// The low bytes of the first count (0-255) code units of text; the length is written by the
// caller just before.
void WriteStrBuffer(BinaryStream &stream, const QString &text, std::int32_t count);
// count (0-255) bytes decoded through the ANSI code page.
QString ReadStrBuffer(BinaryStream &stream, std::int32_t count);

// Length in UTF-16 code units, then the truncated low bytes.
void WriteCountedText(BinaryStream &stream, const QString &text);
// Length in bytes of the text's ANSI form, then that form truncated the same way. Texts of
// a double-byte code page keep their characters whole while they stay under 256 bytes.
void WriteCountedAnsiText(BinaryStream &stream, const QString &text);
// Reads either counted form. A negative length is a stream error.
QString ReadCountedText(BinaryStream &stream);

// Exactly width bytes: the text padded with spaces and cut to width code units, low bytes
// only, without a length.
void WriteFixedText(BinaryStream &stream, const QString &text, std::int32_t width);
// width bytes decoded through the ANSI code page, untrimmed.
QString ReadFixedText(BinaryStream &stream, std::int32_t width);

// An int64 byte count, then the bitmap in BMP file form; a count of 0 for an empty bitmap.
// Answers false when writing failed.
bool WriteBitmapBuffer(BinaryStream &stream, const TBitmap &bitmap);
// Reads a bitmap block into bitmap, which is left empty for a count of 0 or less. Answers
// false, leaving bitmap empty, when the stream ends inside the block (the rest of the stream
// is then consumed, so the next read fails too) or when the bytes are no BMP the decoder
// accepts. Never throws.
bool ReadBitmapBuffer(BinaryStream &stream, TBitmap &bitmap);

} // namespace tessal
