// SPDX-License-Identifier: MIT
// Ordered key/value texts that the application attaches to a shape or to a drawing.
#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace tessal {

struct TUserDataRecord
{
    QString Key;
    QString Value;
    friend bool operator==(const TUserDataRecord &, const TUserDataRecord &) = default;
};

// Records stay in insertion order. Keys are unique only as far as AddKeyandValue enforces
// it: ReNameKey and SetUserDataRecord may produce duplicates, and every lookup by key then
// finds the first record. Keys compare exactly (case-sensitive).
class TUserData
{
public:
    // False, and nothing changes, when the key exists already.
    bool AddKeyandValue(const QString &key, const QString &value);
    bool ChangeValueByKey(const QString &key, const QString &value);
    bool DeleteRecordByKey(const QString &key);
    // The new key is not checked against the others.
    bool ReNameKey(const QString &oldKey, const QString &newKey);
    // Empty text when the key or the index is unknown.
    QString GetValueByKey(const QString &key) const;
    QString GetKeyByNo(std::int32_t index) const;
    std::int32_t GetCount() const { return std::int32_t(m_Records.size()); }
    void ClearAll() { m_Records.clear(); }
    void Assign(const TUserData &source) { m_Records = source.m_Records; }
    // Replaces the records as given; duplicate keys are kept.
    void SetUserDataRecord(const std::vector<TUserDataRecord> &records) { m_Records = records; }

    // The records as "key=value" texts, for places that hold only lists of strings (form
    // files). A record without a value is its key alone; "=" and "\" in a key are escaped
    // with "\", so that every list of records comes back as it was.
    QStringList Texts() const;
    // Replaces the records by those of texts as Texts writes them; a text without an
    // unescaped "=" is a key without a value.
    void SetTexts(const QStringList &texts);

    // All records in order, duplicates included (what the file writers store).
    const std::vector<TUserDataRecord> &Records() const { return m_Records; }

    friend bool operator==(const TUserData &, const TUserData &) = default;

private:
    std::vector<TUserDataRecord>::iterator Find(const QString &key);
    std::vector<TUserDataRecord>::const_iterator Find(const QString &key) const;

    std::vector<TUserDataRecord> m_Records;
};

} // namespace tessal

Q_DECLARE_METATYPE(tessal::TUserData)
