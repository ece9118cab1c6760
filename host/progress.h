#pragma once

#include <QString>

namespace zr
{

/// The line on stderr that shows how far a long run is. Shows nothing when stderr is no terminal, for a few files
/// only, or when the run is quiet.
class Progress
{
public:
    Progress(int total, bool quiet);

    /// Shows that the file `name` is next.
    void show(int done, const QString& name, int failures) const;

    /// Takes the line away, before anything else is printed.
    void clear() const;

private:
    int m_total;
    bool m_shown;
};

} // namespace zr
