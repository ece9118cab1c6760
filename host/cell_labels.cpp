// SPDX-License-Identifier: MIT
#include "host/cell_labels.h"

#include "core/printable.h"

#include <QDir>
#include <QHash>
#include <QStringView>

#include <algorithm>

namespace zr
{
namespace
{

// A path whose end from `shownFrom` on is the label.
struct Candidate {
    QString path;
    int shownFrom;

    // The folder, or at first the file, that comes before the label.
    QStringView nextComponent() const
    {
        const int end = shownFrom > 0 ? shownFrom - 1 : 0;
        const int start = end > 0 ? path.lastIndexOf(QLatin1Char('/'), end - 1) + 1 : 0;
        return QStringView(path).mid(start, end - start);
    }
    bool isShownInFull() const { return shownFrom == 0; }
    void show(QStringView component) { shownFrom = static_cast<int>(component.data() - path.constData()); }
};

using Group = std::vector<Candidate*>; // all have the same label so far

// What the components of a group have in common at their starts and ends.
struct CommonEnds {
    int start = 0;
    int end = 0;

    explicit CommonEnds(const std::vector<QStringView>& components)
    {
        const QStringView first = components.front();
        start = end = static_cast<int>(first.size());
        for (const QStringView component : components) {
            const auto different = std::mismatch(first.begin(), first.end(), component.begin(), component.end());
            start = std::min(start, static_cast<int>(different.first - first.begin()));
            const auto differentEnd = std::mismatch(first.rbegin(), first.rend(), component.rbegin(), component.rend());
            end = std::min(end, static_cast<int>(differentEnd.first - first.rbegin()));
        }
    }
};

// Takes one more folder into the labels of a group. Labels that are then unique are done, with the part of the folder's
// name that differs from the others; the rest form new groups.
void refine(const Group& group, bool areFolders, QHash<QString, CellLabel>& labels, std::vector<Group>& groups)
{
    std::vector<QStringView> components;
    QHash<QStringView, Group> sameLabel;
    for (Candidate* const candidate : group) {
        if (candidate->isShownInFull()) { // such as `a` beside `b/a`
            labels.insert(candidate->path, {printable(candidate->path), 0, 0});
            continue;
        }
        components.push_back(candidate->nextComponent());
        candidate->show(components.back());
        sameLabel[components.back()].push_back(candidate);
    }
    if (components.empty())
        return;
    const CommonEnds common(components);
    for (auto it = sameLabel.cbegin(); it != sameLabel.cend(); ++it) {
        if (it.value().size() > 1) {
            groups.push_back(it.value());
            continue;
        }
        const Candidate& candidate = *it.value().front();
        CellLabel label{printable(candidate.path.mid(candidate.shownFrom)), -1, 0};
        if (areFolders) {
            label.keptAt = common.start;
            label.keptLength = std::max(0, static_cast<int>(it.key().size()) - common.start - common.end);
        }
        labels.insert(candidate.path, label);
    }
}

} // namespace

// Each round looks at one component of each path that is not done, so the time is linear in the length of the paths.
std::vector<CellLabel> cellLabels(const QStringList& paths)
{
    QStringList clean;
    clean.reserve(paths.size());
    for (const QString& path : paths)
        clean.append(QDir::cleanPath(path));
    QStringList different = clean;
    different.removeDuplicates();

    std::vector<Candidate> candidates;
    candidates.reserve(static_cast<std::size_t>(different.size()));
    for (const QString& path : qAsConst(different))
        candidates.push_back({path, static_cast<int>(path.size()) + 1});
    Group all;
    all.reserve(candidates.size());
    for (Candidate& candidate : candidates)
        all.push_back(&candidate);

    QHash<QString, CellLabel> labels;
    std::vector<Group> groups;
    refine(all, false, labels, groups);
    while (!groups.empty()) {
        const Group group = std::move(groups.back());
        groups.pop_back();
        refine(group, true, labels, groups);
    }

    std::vector<CellLabel> inOrder;
    inOrder.reserve(static_cast<std::size_t>(clean.size()));
    for (const QString& path : qAsConst(clean))
        inOrder.push_back(labels.value(path));
    return inOrder;
}

} // namespace zr
