#include "scanning/view/filter_bar.h"

#include "scanning/scan_test_driver.h"

#include <QAction>
#include <QComboBox>
#include <QCompleter>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QStringListModel>
#include <QToolButton>

namespace scanning::view {

namespace {

template <typename Widget>
Widget* named(Widget* widget, const QString& objectName, const QString& accessibleName)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessibleName);
    return widget;
}

QComboBox* andOr(const QString& objectName, const QString& accessibleName, QWidget* parent)
{
    auto* box = named(new QComboBox(parent), objectName, accessibleName);
    box->addItems({QStringLiteral("and"), QStringLiteral("or")});
    return box;
}

QCompleter* completerOver(QStringListModel* model, QLineEdit* field)
{
    auto* completer = new QCompleter(model, field);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchStartsWith);
    field->setCompleter(completer);
    return completer;
}

QToolButton* buttonFor(QAction* action, const QString& objectName, QWidget* parent)
{
    auto* button = named(new QToolButton(parent), objectName, action->text());
    button->setDefaultAction(action);
    return button;
}

} // namespace

FilterBar::FilterBar(scanning::ScanTestDriver& driver, QWidget* parent)
    : QWidget(parent),
      driver_(driver),
      name_(named(new QLineEdit(this), QStringLiteral("ssidForFilterField"), tr("Network name filter"))),
      channel_(named(new QLineEdit(this), QString::fromLatin1(scanning::FilterCriteria::channelFieldIdentifier),
                     tr("Channel filter"))),
      band_(named(new QComboBox(this), QStringLiteral("channelBandForFilterField"), tr("Band filter"))),
      firstAndOr_(andOr(QStringLiteral("firstAndOrButtonField"), tr("Name and channel"), this)),
      secondAndOr_(andOr(QStringLiteral("secondAndOrButtonField"), tr("Channel and band"), this)),
      thirdAndOr_(andOr(QStringLiteral("thirdAndOrButtonField"), tr("Band and signal"), this)),
      signal_(named(new QLineEdit(this), QStringLiteral("rssiValueForFilterField"), tr("Signal filter"))),
      strongerOrWeaker_(named(new QComboBox(this), QStringLiteral("rssiWeakOrStrongField"), tr("Stronger or weaker"))),
      apply_(new QAction(this)),
      clear_(new QAction(tr("Clear"), this)),
      names_(new QStringListModel(this)),
      channels_(new QStringListModel(this)),
      nameCompleter_(completerOver(names_, name_)),
      channelCompleter_(completerOver(channels_, channel_))
{
    name_->setPlaceholderText(tr("Any"));
    channel_->setPlaceholderText(tr("Any"));
    channel_->setValidator(new QIntValidator(0, 999, channel_));
    signal_->setPlaceholderText(tr("dBm"));
    signal_->setValidator(new QIntValidator(-200, 200, signal_));
    band_->addItems({tr("Any"), tr("2.4 GHz"), tr("5 GHz")});
    strongerOrWeaker_->addItems({tr("stronger"), tr("weaker")});

    apply_->setObjectName(QStringLiteral("applyFilterAction"));
    apply_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return));
    clear_->setObjectName(QStringLiteral("clearFilterAction"));
    connect(apply_, &QAction::triggered, this, &FilterBar::applyFilter);
    connect(clear_, &QAction::triggered, this, &FilterBar::clearFilter);
    // Return in a field applies, as the button would.
    for (QLineEdit* field : {name_, channel_, signal_})
        connect(field, &QLineEdit::returnPressed, this, &FilterBar::applyFilter);
    connect(&driver_, &scanning::ScanTestDriver::scanProcessed, this, &FilterBar::refreshCompletions);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    // The buddy makes each caption the label a screen reader reads out for its field.
    auto caption = [this](const QString& text, QWidget* field) {
        auto* label = new QLabel(text, this);
        label->setTextFormat(Qt::PlainText);
        label->setBuddy(field);
        return label;
    };
    layout->addWidget(caption(tr("Name"), name_));
    layout->addWidget(name_, 2);
    layout->addWidget(firstAndOr_);
    layout->addWidget(caption(tr("Channel"), channel_));
    layout->addWidget(channel_, 1);
    layout->addWidget(secondAndOr_);
    layout->addWidget(caption(tr("Band"), band_));
    layout->addWidget(band_);
    layout->addWidget(thirdAndOr_);
    layout->addWidget(caption(tr("Signal"), signal_));
    layout->addWidget(signal_, 1);
    layout->addWidget(strongerOrWeaker_);
    layout->addWidget(buttonFor(apply_, QStringLiteral("applyFilterButton"), this));
    layout->addWidget(buttonFor(clear_, QStringLiteral("clearFilterButton"), this));
    showButtonState();
    refreshCompletions();
}

void FilterBar::applyFilter()
{
    scanning::FilterCriteria& filter = driver_.filter();
    filter.ssidForFilterValue = name_->text();
    filter.channelForFilterValue = channel_->text();
    filter.rssiValueForFilter = signal_->text();
    filter.channelBandItem = band_->currentIndex();
    filter.firstAndOrItem = firstAndOr_->currentIndex();
    filter.secondAndOrItem = secondAndOr_->currentIndex();
    filter.thirdAndOrItem = thirdAndOr_->currentIndex();
    filter.rssiWeakOrStrongItem = strongerOrWeaker_->currentIndex();
    const bool changed = filter.userDidClickedApplyFilterButton();
    emit inputError(filter.inputError);
    if (changed)
        driver_.performScanForeground();
    showButtonState();
}

void FilterBar::clearFilter()
{
    const bool hadCondition = driver_.filter().clearFilter();
    name_->clear();
    channel_->clear();
    signal_->clear();
    band_->setCurrentIndex(0);
    emit inputError(QString());
    showButtonState();
    if (hadCondition)
        driver_.performScanForeground();
}

void FilterBar::showButtonState()
{
    const scanning::FilterCriteria::ButtonState state = driver_.filter().changeFilterButtonState();
    apply_->setText(state.title);
    QFont font = apply_->font();
    font.setBold(state.highlighted);
    apply_->setFont(font);
    if (auto* button = findChild<QToolButton*>(QStringLiteral("applyFilterButton")))
        button->setAccessibleName(state.title);
}

void FilterBar::refreshCompletions()
{
    const QStringList names = driver_.filter().completions(name_->objectName(), QString());
    if (names != names_->stringList())
        names_->setStringList(names);
    const QStringList channels = driver_.filter().completions(channel_->objectName(), QString());
    if (channels != channels_->stringList())
        channels_->setStringList(channels);
}

} // namespace scanning::view
