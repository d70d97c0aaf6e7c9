// SPDX-License-Identifier: MIT
// Ordered key/value records of shapes and drawings.
#include <tessal/shapes/userdata.h>

#include <algorithm>

namespace tessal {

std::vector<TUserDataRecord>::iterator TUserData::Find(const QString &key)
{
    return std::find_if(m_Records.begin(), m_Records.end(),
                        [&](const TUserDataRecord &r) { return r.Key == key; });
}

std::vector<TUserDataRecord>::const_iterator TUserData::Find(const QString &key) const
{
    return std::find_if(m_Records.begin(), m_Records.end(),
                        [&](const TUserDataRecord &r) { return r.Key == key; });
}

bool TUserData::AddKeyandValue(const QString &key, const QString &value)
{
    if (Find(key) != m_Records.end())
        return false;
    m_Records.push_back({key, value});
    return true;
}

bool TUserData::ChangeValueByKey(const QString &key, const QString &value)
{
    auto it = Find(key);
    if (it == m_Records.end())
        return false;
    it->Value = value;
    return true;
}

bool TUserData::DeleteRecordByKey(const QString &key)
{
    auto it = Find(key);
    if (it == m_Records.end())
        return false;
    m_Records.erase(it);
    return true;
}

bool TUserData::ReNameKey(const QString &oldKey, const QString &newKey)
{
    auto it = Find(oldKey);
    if (it == m_Records.end())
        return false;
    it->Key = newKey;
    return true;
}

QString TUserData::GetValueByKey(const QString &key) const
{
    auto it = Find(key);
    return it == m_Records.end() ? QString() : it->Value;
}

QString TUserData::GetKeyByNo(std::int32_t index) const
{
    if (index < 0 || index >= GetCount())
        return {};
    return m_Records[std::size_t(index)].Key;
}

QStringList TUserData::Texts() const
{
    QStringList texts;
    texts.reserve(qsizetype(m_Records.size()));
    for (const TUserDataRecord &r : m_Records) {
        QString key = r.Key;
        key.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
            .replace(QLatin1Char('='), QLatin1String("\\="));
        texts << (r.Value.isEmpty() ? key : key + QLatin1Char('=') + r.Value);
    }
    return texts;
}

void TUserData::SetTexts(const QStringList &texts)
{
    m_Records.clear();
    m_Records.reserve(std::size_t(texts.size()));
    for (const QString &text : texts) {
        TUserDataRecord r;
        qsizetype i = 0;
        for (; i < text.size() && text[i] != QLatin1Char('='); ++i) {
            if (text[i] == QLatin1Char('\\') && i + 1 < text.size())
                ++i;
            r.Key += text[i];
        }
        r.Value = text.mid(i + 1);
        m_Records.push_back(std::move(r));
    }
}

} // namespace tessal
