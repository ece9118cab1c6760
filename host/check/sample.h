// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace zr
{

/// The kinds of files that differ in what their thumbnails need: models are drawn with OpenGL.
enum class SampleKind { SliceFile, Model };

/// A folder of sample files that disappears with the object. The files' names are unique, so whatever the cache has
/// under such a name comes from here.
class SampleFolder
{
public:
    SampleFolder();

    /// Why no sample can be written, and what to do; empty when one can.
    QString fault() const;

    /// Writes a sample and returns its absolute path; empty when that fails.
    QString write(SampleKind kind) const;

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

} // namespace zr
