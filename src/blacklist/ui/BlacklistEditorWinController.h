#pragma once

#include "archive/StringTable.h"
#include "blacklist/BlacklistDraft.h"
#include "blacklist/ui/RuleTableModel.h"
#include "platform/Workspace.h"
#include "text/Url.h"

#include <QDialog>

#include <memory>

class QLineEdit;

namespace Ui {
class BlacklistEditor;
}

namespace quarry {

/// What the editor is handed; everything must outlive it.
struct BlacklistEditorParts {
    HomeFolder home;
    FileStore& files;
    Workspace& workspace;
    const StringTable& texts;
};

/// The window in which a person edits the shared blacklist. It edits a private copy: nothing reaches the file before
/// it is saved. A list that another program wrote meanwhile is not written over: the edits are made on that one, when
/// the window comes to the front again and when it is saved.
///
/// One window lives for as long as the program; it is hidden and shown again. Its layout is BlacklistEditor.ui, which
/// holds the keys of its texts.
class BlacklistEditorWinController final : public QDialog, private RuleTableSource {
    Q_OBJECT

public:
    explicit BlacklistEditorWinController(BlacklistEditorParts parts, QWidget* parent = nullptr);
    ~BlacklistEditorWinController() override;

    // --- For the main window --------------------------------------------------------------------------------------

    /// Shows the list, and brings the window to the front.
    void showWindow();
    /// Shows the window ready to add a rule for that address. What was edited and not saved stays.
    void loadWithAddress(const Url& address);
    /// Adds a rule for just that address, saves the list and shows it.
    void addAndLoadWithAddress(const Url& address);
    [[nodiscard]] bool hasUnsavedEdits() const { return _blManagerTMP.hasEdits(); }
    /// For the end of the program: asks what shall become of unsaved edits. False: it is not to end.
    [[nodiscard]] bool mayClose();

    // --- What the window's parts do -------------------------------------------------------------------------------

    void addToBlacklist();
    void removeFromBlacklist();
    /// Switches the selected rule on or off.
    void filterActivation();
    void testNewExclusion();
    void showRegexpHelp();
    /// Saves and closes. When saving fails, the window stays open and says why.
    void saveBlacklist();
    /// Discards the edits and closes.
    void cancelWin();

    /// The editor's preview of one simple rule: whether it would catch the address.
    [[nodiscard]] static bool testExclusion(const QString& rule, const QString& address, Qt::CaseSensitivity option,
                                            qint64 kind);

    /// Escape, and the window's close button.
    void reject() override { cancelWin(); }

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    enum class Answer { None, Excluded, NotExcluded, Fault };

    void awakeFromNib();
    void setUpTable();
    void connectParts();
    void connectKeys();

    // RuleTableSource
    [[nodiscard]] int numberOfRowsInTableView() const override;
    [[nodiscard]] BlacklistFilterPtr tableViewObjectValue(int row) const override;
    [[nodiscard]] QVariant tableViewWillDisplayCell(RuleColumn column, int row, int role) const override;
    [[nodiscard]] QString tableViewTitle(RuleColumn column) const override;
    void tableViewCheckBoxClicked(int row) override;

    void windowDidBecomeKey();
    void controlTextDidChange(QLineEdit* field);
    void tabViewWillSelectTabViewItem();
    void tableViewSelectionDidChange();
    void caseSensitiveCBChanged();
    void simpleMenuChanged();
    /// False when the file could not be written; the window says why.
    bool writeBlacklist();

    [[nodiscard]] bool isSimpleTab() const;
    [[nodiscard]] QLineEdit& ruleField() const;
    [[nodiscard]] int selectedRow() const;
    void selectRow(int row);
    /// The table shows the list as it is, no row selected.
    void reloadTable();
    void selectItemWithTag(qint64 tag);
    void showFilter(const BlacklistFilter& filter);
    void showAddMode();
    void emptyRule();
    [[nodiscard]] BlacklistFilterPtr typedRule();
    void closeWith(DialogCode code);
    void followFile();
    void sayWhatIsWrong(const QString& words);
    void sayReadFault();
    void showAnswer(Answer answer, const QString& words = {});
    void colorAnswer();
    void chooseDefaultButton(const QWidget* focused);
    void center();
    void bringToFront();
    [[nodiscard]] QString text(const char16_t* key) const;

    BlacklistEditorParts _parts;
    BlacklistDraft _blManagerTMP;
    bool _editMode = false; ///< The selected rule is being modified; else a new one is typed.
    RuleTableModel _rules;
    std::unique_ptr<Ui::BlacklistEditor> _ui;
    Answer _answer = Answer::None;
    bool _keepsTyped = false; ///< While a row is selected that is selected already in the person's eyes.
};

} // namespace quarry
