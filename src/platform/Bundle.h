#pragma once

#include <QString>

namespace quarry {

/// Finds what belongs to the product relative to a program's own place in the bundle, in the build tree as in the
/// install tree. Make the running program's once, at its start: a bundle that is moved away while its program runs is
/// then still looked for where it was.
class Bundle final {
public:
    /// The bundle of the running program. A program file that was replaced meanwhile makes no difference.
    [[nodiscard]] static Bundle ofProgram();
    /// The bundle at that absolute path ("….app").
    [[nodiscard]] static Bundle at(const QString& bundlePath);
    /// For a program file at that absolute path.
    explicit Bundle(QString programPath);

    /// The nearest "….app" folder upwards from the program; empty when there is none. It need not exist any more.
    [[nodiscard]] QString bundlePath() const;
    /// A text of the bundle's "Contents/Info.plist" (XML form); empty when it is not there.
    [[nodiscard]] QString infoValue(const QString& key) const;
    /// The file of the bundle's own program, "Contents/bin/" and the info value "CFBundleExecutable"; empty when it is
    /// not there.
    [[nodiscard]] QString executable() const;
    /// A program or bundle in the bundle's "Contents/bin"; empty when it is not there.
    [[nodiscard]] QString auxiliaryExecutable(const QString& name) const;

    /// The nearest "Contents/Resources" upwards from the program that holds an "English.lproj"; empty when there is
    /// none.
    [[nodiscard]] QString resourcesFolder() const;
    /// The product's own "QuarrySpotter.app/Contents"; empty when the program does not lie in one.
    [[nodiscard]] QString contentsFolder() const;
    /// The updater program's file; empty when it is not there.
    [[nodiscard]] QString updaterProgram() const;

private:
    QString _programPath;
};

} // namespace quarry
