#pragma once

#include <QObject>

/// Where property storages keep their values: an INI file.
class TIniPropStorageManEh : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    const QString &iniFileName() const { return m_iniFileName; }
    void setIniFileName(const QString &name) { m_iniFileName = name; }

private:
    QString m_iniFileName;
};

/// A form's property storage. Inactive by design on every screen: the grids keep their own layout.
class TPropStorageEh : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    bool active() const { return false; }
    TIniPropStorageManEh *storageManager() const { return m_storageManager; }
    void setStorageManager(TIniPropStorageManEh *manager) { m_storageManager = manager; }

private:
    TIniPropStorageManEh *m_storageManager = nullptr;
};
