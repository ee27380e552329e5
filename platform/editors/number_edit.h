#pragma once

#include <QLineEdit>

/// A line for a number: digits with one point, perhaps signed; nothing else can be typed. Empty means no number.
class TDBNumberEditEh : public QLineEdit {
    Q_OBJECT

public:
    explicit TDBNumberEditEh(QWidget *parent = nullptr);
};
