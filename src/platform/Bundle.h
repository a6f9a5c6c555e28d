#pragma once

#include <QString>

namespace quarry {

/// Finds what belongs to the product relative to the running program's own place in the bundle, in the build
/// tree as in the install tree.
class Bundle final {
public:
    /// The bundle of the running program.
    [[nodiscard]] static Bundle ofProgram();
    /// For a program file at that absolute path (tests).
    explicit Bundle(QString programPath);

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
