#pragma once

#include "plugin/forms/base/ufrm_BasicBoot.h"
#include "plugin/view/frame_InputList.h"

#include <QPushButton>
#include <QSplitter>

#include <functional>

/// For each number of a list whether the waybill is signed for, entered, or has a problem, and where it is now. The rows are put
/// together on the client from four queries over the second connection.
class Tfrm_GuestSignQuery : public Tfrm_BasicBoot {
    Q_OBJECT

public:
    explicit Tfrm_GuestSignQuery(TComponentOwner *owner);

    PUBLISHED(TInputList, InputList1);
    PUBLISHED(QSplitter, Splitter1);
    PUBLISHED(TDataView, DataView1);
    PUBLISHED(QPushButton, Button1);
    PUBLISHED(TClientDataSetEx, cds); ///< the result, never opened by a statement
    PUBLISHED(TClientDataSetEx, cds1);

    void FormCreate() override;

protected:
    void FormShow() override;

private:
    void Button1Click();
    void Splitter1Moved();

    void listLines();
    /// Makes the row of the result current that the current answer in cds1 tells of; false when it was not asked for.
    bool locateAnswered();
    /// Copies from each answer the fields that are wanted into the row that it tells of.
    void takeEach(const std::function<bool(const TField &answer, const TField &listed)> &wanted);
    void markProblems();
};

extern Tfrm_Basic *frm_GuestSignQuery;
