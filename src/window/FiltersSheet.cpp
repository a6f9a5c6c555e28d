#include "window/FiltersSheet.h"

#include "text/LocalisedFormat.h"
#include "window/DialogButtons.h"
#include "window/FilterList.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace quarry {

namespace {

constexpr int UsualWidth = 600;

} // namespace

FiltersSheet::FiltersSheet(const Query& query, const StringTable& texts, QWidget* parent)
    : QDialog(parent), _filters(new FilterList(query.addresses, texts, this)),
      _blacklist(new QCheckBox(texts.text(QStringLiteral("212_Check blacklist")), this)),
      _digests(new QCheckBox(texts.text(QStringLiteral("212_Keep digests")), this)),
      _highlights(new QCheckBox(texts.text(QStringLiteral("212_Highlight")), this)), _words(new QLineEdit(this))
{
    setWindowTitle(filledFormat(texts.text(QStringLiteral("212_Title")), {query.title}));
    _blacklist->setObjectName(QStringLiteral("blacklist"));
    _digests->setObjectName(QStringLiteral("digests"));
    _highlights->setObjectName(QStringLiteral("highlights"));
    _words->setObjectName(QStringLiteral("highlightWords"));
    _words->setPlaceholderText(query.words);
    _words->setAccessibleName(texts.text(QStringLiteral("212_Highlight")));
    auto* const label = new QLabel(texts.text(QStringLiteral("212_Label filters")), this);
    label->setBuddy(_filters);
    label->setWordWrap(true);
    auto* const warning = new QLabel(texts.text(QStringLiteral("212_Leaving")), this);
    warning->setObjectName(QStringLiteral("leaving"));
    warning->setWordWrap(true);
    connect(_blacklist, &QCheckBox::toggled, warning, [warning](bool on) { warning->setVisible(!on); });
    connect(_highlights, &QCheckBox::toggled, _words, &QWidget::setEnabled);
    auto* const buttons = okAndCancel(texts, this);
    auto* const column = new QVBoxLayout(this);
    for (QWidget* const widget :
         std::initializer_list<QWidget*>{label, _filters, _blacklist, warning, _digests, _highlights, _words, buttons})
        column->addWidget(widget);
    setSettings({});
    resize(UsualWidth, sizeHint().height());
}

void FiltersSheet::setSettings(const QuerySettings& settings)
{
    _filters->setFilters(settings.filters);
    _blacklist->setChecked(settings.checksBlacklist);
    _digests->setChecked(settings.keepsDigests);
    _highlights->setChecked(settings.highlights);
    _words->setText(settings.highlightWords);
    _words->setEnabled(settings.highlights);
    findChild<QLabel*>(QStringLiteral("leaving"))->setVisible(!settings.checksBlacklist);
}

QuerySettings FiltersSheet::settings() const
{
    return {_blacklist->isChecked(), _digests->isChecked(), _highlights->isChecked(), _words->text().trimmed(),
            _filters->filters()};
}

} // namespace quarry
