#pragma once

// Which of a list of features stay when each goes that is too close to one before it which stays.

#include "frame/attr/Records.h"

#include <boost/shared_ptr.hpp>

#include <algorithm>
#include <array>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

inline std::array<double, 2> centerOf(const attr::HoughCircle2dPpties& circle)
{
    typedef attr::HoughCircle2dPpties Circle;
    return {circle.get<Circle::X>(), circle.get<Circle::Y>()};
}
inline std::array<double, 2> centerOf(const attr::Pixel2d& pixel)
{
    return {pixel.get<attr::Pixel2d::X>(), pixel.get<attr::Pixel2d::Y>()};
}
inline std::array<double, 3> centerOf(const attr::HoughSphere3dPpties& sphere)
{
    typedef attr::HoughSphere3dPpties Sphere;
    return {sphere.get<Sphere::X>(), sphere.get<Sphere::Y>(), sphere.get<Sphere::Z>()};
}
inline std::array<double, 3> centerOf(const attr::Voxel3d& voxel)
{
    return {voxel.get<attr::Voxel3d::X>(), voxel.get<attr::Voxel3d::Y>(), voxel.get<attr::Voxel3d::Z>()};
}

/// The features that stay, in their order.
template<class Feature>
class FeaturesThatStay
{
public:
    void init(const attr::RemoveTooCloseCirclesParams& params)
    {
        typedef attr::RemoveTooCloseCirclesParams Params;
        clear();
        m_isEnabled = params.get<Params::Enabled>();
        m_factor = params.get<Params::DistanceFactor>() - 1.0;
    }
    void clear()
    {
        m_nodes.clear();
        m_radii.clear();
        for (std::vector<double>& each : m_centers)
            each.clear();
    }
    const std::vector<boost::shared_ptr<Feature>>& getNodes() const { return m_nodes; }

    /// Whether the distance that features keep grows with both radii: what is too close with a small radius is so with any.
    bool growsWithRadii() const { return m_isEnabled && m_factor >= 0; }

    template<std::size_t N>
    bool isTooClose(const std::array<double, N>& center, double radius) const
    {
        if (!m_isEnabled)
            return false;
        const std::size_t block = 64;  // looked at without a branch
        for (std::size_t begin = 0; begin < m_radii.size(); begin += block) {
            unsigned int nbClose = 0;
            for (std::size_t i = begin; i < std::min(begin + block, m_radii.size()); ++i) {
                double squares = 0;
                for (std::size_t axis = 0; axis < N; ++axis) {
                    const double difference = center[axis] - m_centers[axis][i];
                    squares += difference * difference;
                }
                const double limit = std::min(radius, m_radii[i]) * m_factor + std::max(radius, m_radii[i]);
                nbClose += limit * limit > squares;
            }
            if (nbClose > 0)
                return true;
        }
        return false;
    }

    /// Takes the next feature of the list, unless it is too close.
    void add(const boost::shared_ptr<Feature>& feature)
    {
        const auto center = centerOf(*feature);
        const double radius = feature->template get<typename Feature::Radius>();
        if (isTooClose(center, radius))
            return;
        m_nodes.push_back(feature);
        m_radii.push_back(radius);
        for (std::size_t axis = 0; axis < center.size(); ++axis)
            m_centers[axis].push_back(center[axis]);
    }

private:
    bool m_isEnabled = false;
    double m_factor = 0;
    std::vector<boost::shared_ptr<Feature>> m_nodes;
    std::vector<double> m_radii;
    std::array<std::vector<double>, 3> m_centers;  // by axis
};

}}}  // namespace orvik::imaproc::fd
