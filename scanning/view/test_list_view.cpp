#include "scanning/view/test_list_view.h"

#include "scanning/scan_test_driver.h"

#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace scanning::view {

TestListView::TestListView(scanning::ScanTestDriver& driver, QWidget* parent)
    : QWidget(parent), driver_(driver), list_(new QListWidget(this)), delete_(new QToolButton(this))
{
    list_->setObjectName(QStringLiteral("testList"));
    list_->setAccessibleName(tr("Scan tests"));
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    list_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    delete_->setObjectName(QStringLiteral("deleteTestButton"));
    delete_->setAccessibleName(tr("Delete test"));
    delete_->setText(tr("Delete"));
    delete_->setIcon(style()->standardIcon(QStyle::SP_TrashIcon));
    delete_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);

    driver_.setConfirmation([this](const scanning::ScanTestDriver::Question& question) {
        QMessageBox box(QMessageBox::Question, tr("Delete test"), question.messageText, QMessageBox::NoButton, this);
        box.setTextFormat(Qt::PlainText);
        QPushButton* yes = box.addButton(question.defaultButton, QMessageBox::YesRole);
        box.addButton(question.alternateButton, QMessageBox::RejectRole);
        box.setDefaultButton(yes);
        box.exec();
        return box.clickedButton() == yes;
    });

    connect(&driver_, &scanning::ScanTestDriver::testListChanged, this, &TestListView::reload);
    connect(list_, &QListWidget::itemSelectionChanged, this, &TestListView::selectionChanged);
    connect(list_, &QListWidget::itemChanged, this, &TestListView::itemEdited);
    connect(delete_, &QToolButton::clicked, this, &TestListView::deleteSelected);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(list_);
    layout->addWidget(delete_, 0, Qt::AlignLeft);
    reload();
}

int TestListView::selectedRow() const
{
    const QList<QListWidgetItem*> items = list_->selectedItems();
    return items.isEmpty() ? -1 : list_->row(items.first());
}

void TestListView::reload()
{
    // A new test goes in at the top, so the chosen row is followed by its test, not its index.
    const int row = selectedRow();
    const auto& tests = driver_.wifiScanTestArray();
    const std::shared_ptr<scanning::WiFiScanTest> chosen =
        row >= 0 && row < list_->count() ? list_->item(row)->data(Qt::UserRole).value<std::shared_ptr<scanning::WiFiScanTest>>()
                                         : nullptr;
    reloading_ = true;
    list_->clear();
    for (const std::shared_ptr<scanning::WiFiScanTest>& test : tests) {
        auto* item = new QListWidgetItem(test->testLabel, list_);
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        item->setData(Qt::UserRole, QVariant::fromValue(test));
        if (test == chosen)
            item->setSelected(true);
    }
    reloading_ = false;
}

void TestListView::selectionChanged()
{
    const int row = selectedRow();
    if (!reloading_ && row >= 0)
        driver_.tableViewSelectionDidChange(row);
}

void TestListView::itemEdited(QListWidgetItem* item)
{
    if (!reloading_)
        driver_.renameTest(list_->row(item), item->text());
}

void TestListView::deleteSelected()
{
    const int row = selectedRow();
    if (row >= 0)
        driver_.removeTest(row);
}

} // namespace scanning::view
