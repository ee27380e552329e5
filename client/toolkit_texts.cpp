#include "client/toolkit_texts.h"

#include <QCoreApplication>
#include <QHash>
#include <QLibraryInfo>

namespace client {
namespace {

struct ToolkitText {
    const char *source;
    const char16_t *chinese;
};

/// The toolkit says each of these with one meaning wherever a user meets it. What the screens and the dialogs of the client show is
/// complete; the rest is the business of the toolkit's own file.
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
    { "Show ", u"显示 " },
    { "Save As", u"另存为" },
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
    // Key names: translated ones would be no shortcuts
    { "Alt+Left", u"Alt+Left" },
    { "Alt+Right", u"Alt+Right" },
    { "Alt+Up", u"Alt+Up" },
    // More buttons
    { "Abort", u"中止" },
    { "Retry", u"重试" },
    { "Ignore", u"忽略" },
    { "Discard", u"不保存" },
    { "Don't Save", u"不保存" },
    { "Restore Defaults", u"恢复默认值" },
    { "Save All", u"全部保存" },
    { "N&o to All", u"全否(&O)" },
    { "Yes to &All", u"全是(&A)" },
    { "Show Details...", u"显示详情…" },
    { "Hide Details...", u"隐藏详情…" },
    { "Enter a value:", u"请输入：" },
    // Tabs and tool bars that do not fit
    { "Scroll Left", u"向左滚动" },
    { "Scroll Right", u"向右滚动" },
    // Print dialogs
    { "Print", u"打印" },
    { "&Print", u"打印(&P)" },
    { "&Options >>", u"选项(&O) >>" },
    { "&Options <<", u"选项(&O) <<" },
    { "Print to File (PDF)", u"打印到文件 (PDF)" },
    { "Local file", u"本机文件" },
    { "Write PDF file", u"写入 PDF 文件" },
    { "Printer", u"打印机" },
    { "&Name:", u"名称(&N)：" },
    { "P&roperties", u"属性(&R)" },
    { "Location:", u"位置：" },
    { "Preview", u"预览" },
    { "Type:", u"类型：" },
    { "Output &file:", u"输出文件(&F)：" },
    { "Print range", u"打印范围" },
    { "Print all", u"全部" },
    { "Pages from", u"页码从" },
    { "to", u"到" },
    { "Pages", u"页码" },
    { "Specify pages or ranges separated by commas. Ranges are specified by two numbers separated by a hyphen. E.g: 3,5-7,9 prints pages "
      "3, 5, 6, 7 and 9.",
        u"用逗号分隔页码或范围，例如 3,5-7,9 打印第 3、5、6、7 和 9 页。" },
    { "Current Page", u"当前页" },
    { "Selection", u"所选内容" },
    { "Page Set:", u"页面：" },
    { "All Pages", u"所有页" },
    { "Odd Pages", u"奇数页" },
    { "Even Pages", u"偶数页" },
    { "Output Settings", u"输出设置" },
    { "Copies", u"份数" },
    { "Copies:", u"份数：" },
    { "Collate", u"逐份打印" },
    { "Reverse", u"逆序打印" },
    { "Options", u"选项" },
    { "Color Mode", u"颜色" },
    { "Color", u"彩色" },
    { "Grayscale", u"灰度" },
    { "Double Sided Printing", u"双面打印" },
    { "Off", u"关闭" },
    { "Long side binding", u"长边翻转" },
    { "Short side binding", u"短边翻转" },
    { "Printer Properties", u"打印机属性" },
    { "Job Options", u"任务选项" },
    { "Page", u"页面" },
    { "Advanced", u"高级" },
    { "There are conflicts in some options. Please fix them.", u"有些选项互相冲突，请改正。" },
    { "Option '%1' cannot be set to '%2'. Please fix it.", u"选项“%1”不能设为“%2”，请改正。" },
    { "'%1' is not a valid page range.", u"“%1”不是有效的页码范围。" },
    { "The 'From' value cannot be greater than the 'To' value.", u"起始页不能大于结束页。" },
    { "%1 is a directory.\nPlease choose a different file name.", u"%1 是一个目录。\n请换一个文件名。" },
    { "File %1 is not writable.\nPlease choose a different file name.", u"文件 %1 不能写入。\n请换一个文件名。" },
    { "%1 already exists.\nDo you want to overwrite it?", u"%1 已经存在。\n要覆盖它吗？" },
    // Page setup
    { "Page Setup", u"页面设置" },
    { "Paper", u"纸张" },
    { "Page size:", u"纸张大小：" },
    { "Width:", u"宽度：" },
    { "Height:", u"高度：" },
    { "Paper source:", u"纸张来源：" },
    { "Orientation", u"方向" },
    { "Portrait", u"纵向" },
    { "Landscape", u"横向" },
    { "Reverse landscape", u"横向（倒转）" },
    { "Reverse portrait", u"纵向（倒转）" },
    { "Margins", u"页边距" },
    { "top margin", u"上边距" },
    { "bottom margin", u"下边距" },
    { "left margin", u"左边距" },
    { "right margin", u"右边距" },
    { "Page Layout", u"页面布局" },
    { "Page order:", u"页面顺序：" },
    { "Pages per sheet:", u"每张页数：" },
    { "Left to Right, Top to Bottom", u"从左到右，从上到下" },
    { "Left to Right, Bottom to Top", u"从左到右，从下到上" },
    { "Right to Left, Bottom to Top", u"从右到左，从下到上" },
    { "Right to Left, Top to Bottom", u"从右到左，从上到下" },
    { "Bottom to Top, Left to Right", u"从下到上，从左到右" },
    { "Bottom to Top, Right to Left", u"从下到上，从右到左" },
    { "Top to Bottom, Left to Right", u"从上到下，从左到右" },
    { "Top to Bottom, Right to Left", u"从上到下，从右到左" },
    { "Custom", u"自定义" },
    { "mm", u"毫米" },
    { "Millimeters (mm)", u"毫米 (mm)" },
    { "Inches (in)", u"英寸 (in)" },
    { "Points (pt)", u"点 (pt)" },
    { "Pica (P̸)", u"派卡 (P̸)" },
    { "Didot (DD)", u"迪多 (DD)" },
    { "Cicero (CC)", u"西塞罗 (CC)" },
    // Print jobs
    { "Job", u"任务" },
    { "Job Control", u"任务控制" },
    { "Scheduled printing:", u"打印时间：" },
    { "Billing information:", u"账单信息：" },
    { "Job priority:", u"任务优先级：" },
    { "Banner Pages", u"分隔页" },
    { "Start:", u"开始：" },
    { "End:", u"结束：" },
    { "Print Immediately", u"立即打印" },
    { "Hold Indefinitely", u"一直保留" },
    { "Day (06:00 to 17:59)", u"白天 (06:00 到 17:59)" },
    { "Night (18:00 to 05:59)", u"夜间 (18:00 到 05:59)" },
    { "Second Shift (16:00 to 23:59)", u"第二班 (16:00 到 23:59)" },
    { "Third Shift (00:00 to 07:59)", u"第三班 (00:00 到 07:59)" },
    { "Weekend (Saturday to Sunday)", u"周末 (周六到周日)" },
    { "Specific Time", u"指定时间" },
    { "None", u"无" },
    { "Standard", u"标准" },
    { "Unclassified", u"无密级" },
    { "Confidential", u"机密" },
    { "Classified", u"有密级" },
    { "Secret", u"秘密" },
    { "Top Secret", u"绝密" },
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

void installToolkitTexts()
{
    auto *rest = new QTranslator(qApp);
    const QString name = QStringLiteral("qtbase_zh_CN");
    if (rest->load(name, QLibraryInfo::path(QLibraryInfo::TranslationsPath))
        || rest->load(name, QCoreApplication::applicationDirPath() + QStringLiteral("/translations")))
        QCoreApplication::installTranslator(rest);
    // The last one is asked first.
    QCoreApplication::installTranslator(new ToolkitTexts(qApp));
}

} // namespace client
