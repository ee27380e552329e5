#include "client/toolkit_texts.h"

#include <QHash>

namespace client {
namespace {

struct ToolkitText {
    const char *source;
    const char16_t *chinese;
};

/// The toolkit says each of these with one meaning wherever a user meets it.
const ToolkitText texts[] = {
    // Buttons
    { "OK", u"确定" },
    { "Cancel", u"取消" },
    { "Save", u"保存" },
    { "&Save", u"保存(&S)" },
    { "Open", u"打开" },
    { "&Open", u"打开(&O)" },
    { "Close", u"关闭" },
    { "&Yes", u"是(&Y)" },
    { "&No", u"否(&N)" },
    { "Help", u"帮助" },
    { "Apply", u"应用" },
    { "Reset", u"重置" },
    { "Show Details...", u"详细…" },
    { "Hide Details...", u"收起详细" },
    // Edit menus
    { "&Undo", u"撤销(&U)" },
    { "&Redo", u"重做(&R)" },
    { "Cu&t", u"剪切(&T)" },
    { "&Copy", u"复制(&C)" },
    { "Copy &Link Location", u"复制链接(&L)" },
    { "&Paste", u"粘贴(&P)" },
    { "Delete", u"删除" },
    { "Select All", u"全选" },
    // Child windows
    { "%1 - [%2]", u"%1 - [%2]" },
    { "&Restore", u"还原(&R)" },
    { "&Move", u"移动(&M)" },
    { "&Size", u"大小(&S)" },
    { "Mi&nimize", u"最小化(&N)" },
    { "Ma&ximize", u"最大化(&X)" },
    { "Stay on &Top", u"总在最前(&T)" },
    { "&Close", u"关闭(&C)" },
    { "Minimize", u"最小化" },
    { "Maximize", u"最大化" },
    { "Restore", u"还原" },
    { "Restore Down", u"向下还原" },
    { "Menu", u"菜单" },
    // Scroll bars
    { "Scroll here", u"滚动到这里" },
    { "Left edge", u"最左" },
    { "Right edge", u"最右" },
    { "Top", u"顶部" },
    { "Bottom", u"底部" },
    { "Page left", u"向左一页" },
    { "Page right", u"向右一页" },
    { "Page up", u"上一页" },
    { "Page down", u"下一页" },
    { "Scroll left", u"向左滚动" },
    { "Scroll right", u"向右滚动" },
    { "Scroll up", u"向上滚动" },
    { "Scroll down", u"向下滚动" },
    // File dialogs
    { "Look in:", u"查找范围：" },
    { "Directory:", u"目录：" },
    { "File &name:", u"文件名(&N)：" },
    { "Files of type:", u"文件类型：" },
    { "Back", u"后退" },
    { "Go back", u"后退" },
    { "Forward", u"前进" },
    { "Go forward", u"前进" },
    { "Parent Directory", u"上一级目录" },
    { "Go to the parent directory", u"到上一级目录" },
    { "Create New Folder", u"新建文件夹" },
    { "Create a New Folder", u"新建文件夹" },
    { "List View", u"列表" },
    { "Change to list view mode", u"按列表显示" },
    { "Detail View", u"详细信息" },
    { "Change to detail view mode", u"显示详细信息" },
    { "Sidebar", u"侧栏" },
    { "List of places and bookmarks", u"常用位置" },
    { "Files", u"文件" },
    { "&Rename", u"重命名(&R)" },
    { "&Delete", u"删除(&D)" },
    { "Show &hidden files", u"显示隐藏文件(&H)" },
    { "&New Folder", u"新建文件夹(&N)" },
    { "New Folder", u"新建文件夹" },
    { "Remove", u"移除" },
    { "All Files (*)", u"所有文件 (*)" },
    { "Recent Places", u"最近的位置" },
    { "Name", u"名称" },
    { "Size", u"大小" },
    { "Type", u"类型" },
    { "Kind", u"类型" },
    { "Date Modified", u"修改日期" },
    { "Computer", u"计算机" },
    { "My Computer", u"我的电脑" },
    { "Drive", u"驱动器" },
    { "Folder", u"文件夹" },
    { "File Folder", u"文件夹" },
    { "File", u"文件" },
    { "%1 File", u"%1 文件" },
    { "%1\nFile not found.\nPlease verify the correct file name was given.", u"%1\n找不到这个文件，请检查文件名。" },
    { "%1\nDirectory not found.\nPlease verify the correct directory name was given.", u"%1\n找不到这个目录，请检查目录名。" },
    { "%1 already exists.\nDo you want to replace it?", u"%1 已经存在。\n要替换它吗？" },
};

} // namespace

QString ToolkitTexts::translate(const char *, const char *source, const char *, int) const
{
    static const QHash<QByteArray, QString> chinese = [] {
        QHash<QByteArray, QString> table;
        for (const ToolkitText &text : texts)
            table.insert(text.source, QString::fromUtf16(text.chinese));
        return table;
    }();
    return chinese.value(source);
}

} // namespace client
