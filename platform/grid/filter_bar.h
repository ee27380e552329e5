#pragma once

#include <QStringList>
#include <QTimer>
#include <QWidget>

class QHBoxLayout;
class QLabel;
class QLineEdit;

namespace platform {

/// The bar above a grid's titles: a line to type into, the other conditions as buttons that take them back, and how many rows are
/// seen of how many. Reports what a person does; changes no rows itself.
class FilterBar : public QWidget {
    Q_OBJECT

public:
    explicit FilterBar(QWidget *grid);

    void beginTyping();
    bool isTyping() const; ///< the line has the focus
    void showFilter(const QString &text, const QStringList &conditions, int rows, int allRows);

Q_SIGNALS:
    void textEntered(const QString &text); ///< a moment after the last key, so that a fast typist waits for one search
    void conditionRemoved(int condition);
    void cleared();
    void left(); ///< by a key, back to the grid

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void enterText();
    void showConditions(const QStringList &conditions);

    QLineEdit *m_text;
    QHBoxLayout *m_conditions;
    QString m_shownText; ///< what the rows are filtered by
    QStringList m_shownConditions;
    QLabel *m_counts;
    QTimer m_pause;
};

} // namespace platform
