// A file of column layouts, as a person may have edited it: a grid takes it, keeps to its limits, and what it saves comes back the same.

#include "plugin/view/layout_file.h"
#include "plugin/view/frame_DataView.h"
#include "plugin/view/layout_storage.h"
#include "tests/fuzz/application.h"
#include "tests/fuzz/require.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

TIniPropStorageManEh *IniStorageManager = nullptr;

namespace {

using namespace platform;

/// A form with one view, whose layout is kept in a file of its own.
class Screen {
public:
    Screen()
    {
        m_storage.setIniFileName(m_directory.filePath(QStringLiteral("layout.ini")));
        IniStorageManager = &m_storage;
        m_form.setObjectName(QStringLiteral("f"));
        m_view.setObjectName(QStringLiteral("v"));
        m_view.setProperty("_owner", QVariant::fromValue<QObject *>(&m_form));
        m_view.design({ text("", u"序号", 40), text("NAME", u"名称", 80), text("SECRET", u"隐藏", 70).hidden(),
                          number("FEE", u"费用", 60).sum(u"总金额"), text("SITE", u"网点", 90) },
            nullptr, 1);
        m_view.ensurePolished();
    }

    void load(QByteArrayView bytes)
    {
        QFile file(m_storage.iniFileName());
        require(file.open(QIODevice::WriteOnly) && file.write(bytes.data(), bytes.size()) == bytes.size());
        file.close();
        m_view.DataViewGrid->restoreDesignedColumns();
        m_view.LoadLayout(m_storage.iniFileName());
    }

    /// What the view saves over what was loaded.
    QByteArray saved()
    {
        m_view.SaveLayout(m_storage.iniFileName());
        QFile file(m_storage.iniFileName());
        require(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void check() const
    {
        const TDBGridEh &grid = *m_view.DataViewGrid;
        require(grid.columnCount() == 5);
        for (int column = 0; column < grid.columnCount(); ++column)
            require(grid.column(column).width > 0 && grid.column(column).width <= 10'000 && grid.columnIndex(u"FEE") >= 0);
    }

private:
    /// In memory where the system has such a folder, because each save waits for the disk.
    static QString pattern()
    {
        const QString memory = QStringLiteral("/dev/shm");
        return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + QStringLiteral("/kelvara-fuzz-XXXXXX");
    }

    QTemporaryDir m_directory { pattern() };
    TIniPropStorageManEh m_storage;
    TDataModule m_form;
    TDataView m_view;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    needApplication();
    static Screen screen;
    screen.load({ reinterpret_cast<const char *>(data), qsizetype(size) });
    screen.check();
    const QByteArray saved = screen.saved();
    screen.load(saved);
    screen.check();
    require(screen.saved() == saved);
    return 0;
}
