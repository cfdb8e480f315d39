#include "Processor/ShellVotes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace orvik { namespace imaproc { namespace fd {

namespace {

// By how much the directions of a list are widened, far above what normalising, the cosine and the choice of a list are
// rounded by.
const double g_slack = 4e-6;
// The most entries of all lists.
const double g_mostEntries = 3e6;

struct Direction
{
    double x, y, z;

    Direction(double atX, double atY, double atZ)
    {
        const double length = std::sqrt(atX * atX + atY * atY + atZ * atZ);
        x = atX / length;
        y = atY / length;
        z = atZ / length;
    }
    double angleTo(const Direction& other) const
    {
        return std::acos(std::min(1.0, x * other.x + y * other.y + z * other.z));
    }
};

/// All directions within an angle below a right one of another.
struct WideCone
{
    Direction axis;
    double angle, squares;  // of the cosine

    WideCone(const Direction& middle, double widest)
        : axis(middle), angle(widest), squares(std::cos(widest) * std::cos(widest))
    {
    }
    /// Calls f(i) for all whole offsets along an axis, of which the cone's own has `part`, that places up to a distance may have.
    template<class F>
    void forEachOffset(double part, int distance, const F& f) const
    {
        const double reach = distance + 1.0, turned = std::acos(std::min(1.0, part));
        const double low = std::min(0.0, std::cos(turned + angle)), high = std::cos(std::max(0.0, turned - angle));
        for (int i = std::max(-distance, static_cast<int>(std::floor(low * reach)));
             i <= std::min(distance, static_cast<int>(std::ceil(high * reach))); ++i)
            f(i);
    }

    /// Limits of x so that (x, y, z) lies within; none where the lower one is greater.
    void limits(double y, double z, double& low, double& high) const
    {
        const double along = axis.y * y + axis.z * z;
        // a x^2 + 2 b x + c >= 0, and axis.x * x + along >= 0
        const double a = axis.x * axis.x - squares, b = axis.x * along, c = along * along - squares * (y * y + z * z);
        const double root = std::sqrt(std::max(0.0, b * b - a * c)), nearlyNone = 1e-7;
        low = -1e9;
        high = 1e9;
        if (std::fabs(a) < nearlyNone)
            return;  // the x axis lies on the cone: all of the row is taken
        if (a > 0) {
            low = widened((root - b) / a, -1);
            return;
        }
        const double first = (root - b) / a, last = (-root - b) / a;
        if (b * b - a * c < -1e-9 * (b * b + 1) || axis.x * (first + last) / 2 + along < -1e-9) {
            high = low - 1;
            return;
        }
        low = widened(first, -1);
        high = widened(last, 1);
    }

private:
    static double widened(double bound, double sign) { return bound + sign * 1e-6 * (1 + std::fabs(bound)); }
};

/// The cones of all lists: bin by bin between x, the axis that is the longest, and the two others; then those of y and z.
std::vector<WideCone> conesOf(unsigned long nbBins, double open)
{
    std::vector<WideCone> cones;
    for (int axis = 0; axis < 3; ++axis)
        for (unsigned long u = 0; u < nbBins; ++u)
            for (unsigned long v = 0; v < nbBins; ++v) {
                const auto at = [&](double du, double dv) {
                    const double n = static_cast<double>(nbBins);
                    const double first = (static_cast<double>(u) + du) / n, second = (static_cast<double>(v) + dv) / n;
                    return axis == 0   ? Direction(1, first, second)
                           : axis == 1 ? Direction(first, 1, second)
                                       : Direction(first, second, 1);
                };
                const Direction middle = at(0.5, 0.5);
                double farthest = 0;
                for (const double du : {0.0, 1.0})
                    for (const double dv : {0.0, 1.0})
                        farthest = std::max(farthest, middle.angleTo(at(du, dv)));
                cones.emplace_back(middle, farthest + open + g_slack);
            }
    return cones;
}

/// Which groups of a row have places between two columns.
class RowGroups
{
public:
    explicit RowGroups(const Shells& shells) : m_radius(shells.getMaxRadius()), m_side(2 * m_radius + 1)
    {
        const long none = m_side;
        m_next.assign(static_cast<std::size_t>((m_radius + 1) * (m_radius + 1) * (m_side + 1)), static_cast<int>(none));
        for (int dz = 0; dz <= m_radius; ++dz)
            for (int dy = 0; dy <= m_radius; ++dy) {
                int* const next = &m_next[placeOf(dy, dz)];
                if (const Shells::Row* const row = shells.rowAt(dy, dz))
                    for (std::size_t k = row->begin; k < row->end; ++k) {
                        const int column = shells.getElements()[k].dx + static_cast<int>(m_radius);
                        next[column] = column;
                    }
                for (long column = m_side - 1; column >= 0; --column)
                    next[column] = std::min(next[column], next[column + 1]);
            }
    }
    /// Calls f(group).
    template<class F>
    void forEach(int qy, int qz, double low, double high, const F& f) const
    {
        const double reach = static_cast<double>(m_radius);
        const long lanes = static_cast<long>(ShellVoteLists::s_lanes);
        const long first = static_cast<long>(std::ceil(std::max(low, -reach))) + m_radius;
        const long last = static_cast<long>(std::floor(std::min(high, reach))) + m_radius;
        const int* const next = &m_next[placeOf(std::abs(qy), std::abs(qz))];
        for (long column = first; column <= last;) {
            column = next[column];
            if (column > last)
                break;
            f(column / lanes);
            column = (column / lanes + 1) * lanes;
        }
    }

private:
    std::size_t placeOf(int dy, int dz) const { return static_cast<std::size_t>((dz * (m_radius + 1) + dy) * (m_side + 1)); }
    const long m_radius, m_side;
    std::vector<int> m_next;  // of each row without negative offsets the next place from a column on, or none
};

ShellVoteLists::Group groupAt(const Shells& shells, int qx, int qy, int qz)
{
    ShellVoteLists::Group group = {};
    const Shells::Row* const row = shells.rowAt(qy, qz);
    for (std::size_t k = row->begin; k < row->end; ++k) {
        const ShellElement& e = shells.getElements()[k];
        const int lane = e.dx - qx;
        if (lane < 0 || lane >= static_cast<int>(ShellVoteLists::s_lanes))
            continue;
        const float radius = radiusOf(e.dx, qy, qz);
        group.units[0][lane] = static_cast<float>(e.dx) / radius;
        group.units[1][lane] = static_cast<float>(qy) / radius;
        group.units[2][lane] = static_cast<float>(qz) / radius;
        group.weights[lane] = e.weights[0];
    }
    return group;
}

}  // namespace

ShellVoteLists makeShellVoteLists(const Shells& shells, unsigned long linePitch, unsigned long slicePitch)
{
    ShellVoteLists lists;
    const int radius = static_cast<int>(shells.getMaxRadius());
    const long lanes = static_cast<long>(ShellVoteLists::s_lanes), nbGroups = (2l * radius + lanes) / lanes,
               side = 2l * radius + 1;
    lists.radius = radius;
    const double open = std::acos(std::max(static_cast<double>(shells.getCone().cosine) - g_slack, -1.0)) + g_slack;
    // Narrow lists have few groups that a gradient does not reach; wide ones are soon made, and kept.
    lists.nbBins = 4;
    const auto lengthFor = [&](double nbBins) {
        const double angle = open + 0.6 / nbBins;
        return static_cast<double>(shells.getElements().size()) * angle * angle / 8;
    };
    while (lists.nbBins < 16 && static_cast<double>(lists.nbBins) * open < 1.7
           && 12.0 * static_cast<double>(lists.nbBins * lists.nbBins) * lengthFor(2.0 * static_cast<double>(lists.nbBins))
                  < g_mostEntries)
        lists.nbBins *= 2;

    const RowGroups rowGroups(shells);
    std::vector<std::uint32_t> numbers(static_cast<std::size_t>(side * side * nbGroups));  // of the groups that are used
    const auto addRow = [&](const WideCone& cone, int qy, int qz) {
        double low, high;
        cone.limits(qy, qz, low, high);
        if (low > high || qy * qy + qz * qz > (radius + 1) * (radius + 1))
            return;
        rowGroups.forEach(qy, qz, low, high, [&](long group) {
            const std::size_t place = static_cast<std::size_t>(((qz + radius) * side + qy + radius) * nbGroups + group);
            numbers[place] = 1;
            const long qx = group * lanes - radius;
            for (unsigned int mirrored = 0; mirrored < 4; ++mirrored) {
                const long y = mirrored & 1u ? -qy : qy, z = mirrored & 2u ? -qz : qz;
                lists.entries[mirrored].push_back(
                    {static_cast<std::uint32_t>(place),
                     static_cast<std::int32_t>(qx + y * static_cast<long>(linePitch) + z * static_cast<long>(slicePitch))});
            }
        });
    };
    for (const WideCone& cone : conesOf(lists.nbBins, open)) {
        const std::size_t first = lists.begins.size();
        lists.begins.resize(first + static_cast<std::size_t>(side) + 1, static_cast<std::uint32_t>(lists.entries[0].size()));
        cone.forEachOffset(cone.axis.z, radius, [&](int qz) {
            cone.forEachOffset(cone.axis.y, radius, [&](int qy) { addRow(cone, qy, qz); });
            std::fill(lists.begins.begin() + static_cast<std::ptrdiff_t>(first) + qz + radius + 1, lists.begins.end(),
                      static_cast<std::uint32_t>(lists.entries[0].size()));
        });
    }
    std::uint32_t nbUsed = 0;
    for (std::uint32_t& number : numbers)
        if (number != 0)
            number = nbUsed++;
    lists.groups.resize(nbUsed);
    std::vector<bool> isMade(nbUsed);
    for (std::vector<ShellVoteLists::Entry>& entries : lists.entries)
        for (ShellVoteLists::Entry& entry : entries) {
            const long place = entry.group;
            entry.group = numbers[static_cast<std::size_t>(place)];
            if (isMade[entry.group])
                continue;
            isMade[entry.group] = true;
            const int qx = static_cast<int>(place % nbGroups * lanes) - radius,
                      qy = static_cast<int>(place / nbGroups % side) - radius,
                      qz = static_cast<int>(place / nbGroups / side) - radius;
            lists.groups[entry.group] = groupAt(shells, qx, qy, qz);
        }
    lists.meanLength = static_cast<double>(lists.entries[0].size()) / static_cast<double>(lists.nbDirections());
    return lists;
}

}}}  // namespace orvik::imaproc::fd
