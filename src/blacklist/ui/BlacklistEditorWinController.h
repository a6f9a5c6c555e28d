#pragma once

#include "archive/StringTable.h"
#include "blacklist/BlacklistDraft.h"
#include "blacklist/ui/RuleTableModel.h"
#include "platform/LoopWorker.h"
#include "platform/Workspace.h"
#include "text/Url.h"

#include <QDialog>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

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
    EventTimers& timers;
};

/// The window in which a person edits the shared blacklist. It edits a private copy: nothing reaches the file before
/// it is saved. A list that another program wrote meanwhile is not written over: the edits are made on that one, when
/// the window comes to the front again and when it is saved.
///
/// The file is read and written on another thread. Meanwhile the window says so, a rule can be typed and tried, and
/// edits of the list are refused; while it is saved, the window stays open.
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
    [[nodiscard]] bool hasUnsavedEdits() const { return _canSave && _blManagerTMP.hasEdits(); }
    /// For the end of the program: asks what shall become of unsaved edits. False: it is not to end; when the edits are
    /// being saved, `saved` happens once they are.
    [[nodiscard]] bool mayClose(std::function<void()> saved);

    // --- What the window's parts do -------------------------------------------------------------------------------

    void addToBlacklist();
    void removeFromBlacklist();
    /// Switches the selected rule on or off.
    void filterActivation();
    void testNewExclusion();
    void showRegexpHelp();
    /// Saves, then closes. When saving fails, the window stays open and says why.
    void saveBlacklist();
    /// Discards the edits and closes; not while they are saved.
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
    enum class Work { None, Reading, Saving };
    /// What is done to a copy of the list; one line for a person when it failed.
    using Job = std::function<QString(BlacklistDraft& copy)>;

    void awakeFromNib();
    void setUpTable();
    void connectParts();
    void connectKeys();
    void connectWork();

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
    /// Has the job save the list, which the window says when it fails; then `done` happens.
    void writeBlacklist(Job job, std::function<void(bool isSaved)> done);

    /// Does the job on another thread. Then the copy is the list, and `done` gets what the job answered.
    void start(Work work, Job job, std::function<void(const QString& fault)> done);
    void finish(BlacklistDraft list);
    /// At once, or when the list is neither read nor saved any more.
    void whenIdle(std::function<void()> call);
    void setWork(Work work);
    void setCanAdd(bool can);
    void setCanSave(bool can);

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
    void say(const QString& words);
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
    Work _work = Work::None;
    std::uint64_t _workNumber = 0; ///< What an older work brings is of no use any more.
    bool _canAdd = false;          ///< Once nothing is read or saved.
    bool _canSave = false;         ///< The same.
    std::vector<std::function<void()>> _waiting;
    QTimer _saysWork; ///< Work that is over at once is not worth a word.
    LoopWorker _worker;
};

} // namespace quarry
