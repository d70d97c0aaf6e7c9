// SPDX-License-Identifier: MIT
// TMyImage: the picture and its adjustment settings, their setters and copying.
#include <tessal/shapes/image.h>

namespace tessal {

namespace {

template <typename T>
void StoreAndRepaint(T &field, const T &value, TShapeHost *host)
{
    if (field == value)
        return;
    field = value;
    host->RequestRepaint();
}

} // namespace

void TMyImage::CopyImageFields(const TMyShape &source)
{
    const auto *image = dynamic_cast<const TMyImage *>(&source);
    if (!image || image == this)
        return;
    m_Bitmap = image->m_Bitmap;
    m_Brightness = image->m_Brightness;
    m_Contrast = image->m_Contrast;
    m_Transparent = image->m_Transparent;
    m_Border = image->m_Border;
    m_GrayScale = image->m_GrayScale;
    m_TransparentColor = image->m_TransparentColor;
    m_TransparentMode = image->m_TransparentMode;
}

void TMyImage::Assign(const TMyShape &source)
{
    TMyRectangle::Assign(source);
    CopyImageFields(source);
}

void TMyImage::AssignWithoutRelation(const TMyShape &source)
{
    TMyRectangle::AssignWithoutRelation(source);
    CopyImageFields(source);
}

void TMyImage::SetBitmap(const TBitmap &bitmap)
{
    StoreAndRepaint(m_Bitmap, bitmap, Host());
}

void TMyImage::SetBrightness(std::int32_t delta)
{
    StoreAndRepaint(m_Brightness, delta, Host());
}

void TMyImage::SetContrast(std::int32_t k)
{
    StoreAndRepaint(m_Contrast, k, Host());
}

void TMyImage::SetTransparent(bool on)
{
    StoreAndRepaint(m_Transparent, on, Host());
}

void TMyImage::SetBorder(bool on)
{
    StoreAndRepaint(m_Border, on, Host());
}

void TMyImage::SetGrayScale(bool on)
{
    StoreAndRepaint(m_GrayScale, on, Host());
}

void TMyImage::SetTransparentColor(TColor color)
{
    StoreAndRepaint(m_TransparentColor, color, Host());
}

void TMyImage::SetTransparentMode(TTransparentMode mode)
{
    StoreAndRepaint(m_TransparentMode, mode, Host());
}

} // namespace tessal
