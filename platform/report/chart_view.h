#pragma once

#include "platform/report/layout/chart_drawing.h"

#include <QWidget>

namespace report {

/// A chart that fills its widget. Tells where a person points in it; saves it as a picture.
class ChartView : public QWidget {
    Q_OBJECT

public:
    explicit ChartView(QWidget *parent = nullptr);

    void showChart(const ChartData &chart, ChartKind kind);
    void markPoint(int point); ///< the current one; -1: none
    /// The middle of what is drawn for a value, in the widget; nothing when it is not seen.
    QPoint placeOf(int point, int series) const;
    /// Writes it as .png or .svg, as the ending says; throws Exception and leaves no file when it cannot.
    void save(const QString &fileName) const;

    QSize sizeHint() const override { return { 640, 400 }; }

Q_SIGNALS:
    void pointClicked(int point);
    void pointDoubleClicked(int point);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    bool event(QEvent *event) override;

private:
    struct Picture {
        Resources resources {};
        Page page {};
        QSize size {};
        QList<ChartMark> marks {};
    };
    Picture drawn(QSize size) const;
    void drawAgain();
    const ChartMark *markAt(QPoint place) const;

    ChartData m_data;
    ChartKind m_kind = ChartKind::Bars;
    Picture m_picture;
    int m_markedPoint = -1;
};

} // namespace report
