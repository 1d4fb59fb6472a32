#ifndef TOOLKIT_DRAW_PICTURE_H
#define TOOLKIT_DRAW_PICTURE_H

#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

class ModelGraph;
struct AnswerJoin;
struct ModelJoin;

/// A subject as it is drawn.
struct PictureNode
{
    enum class EKind : std::uint8_t
    {
        /// Joined one-to-one only, or not at all.
        Plain,
        Fact,
        Dimension,
        Shortcut,
    };
    enum class ERole : std::uint8_t
    {
        Context,
        OnPath,
        /// The question names it.
        Asked,
    };

    amd_id id;
    std::string name{};
    /// Shortcut: what it stands for.
    std::string target{};
    EKind kind = EKind::Plain;
    ERole role = ERole::Context;
};

/// A join as it is drawn. The fact's end comes first where there is one.
struct PictureEdge
{
    enum class ERole : std::uint8_t
    {
        Context,
        /// On an alternative that is as cheap as the chosen path.
        Alternative,
        Chosen,
    };
    enum class EKind : std::uint8_t
    {
        Join,
        /// Between a shortcut and what it stands for.
        StandsFor,
    };

    amd_id id;
    std::string name{};
    /// Positions among the nodes.
    std::size_t first = 0;
    std::size_t second = 0;
    std::string firstCardinality{};
    std::string secondCardinality{};
    EKind kind = EKind::Join;
    ERole role = ERole::Context;
    /// What the model decides on it: "preferred", "avoided", or nothing.
    std::string_view decision{};
    /// How many joins beside the answer the line stands for.
    std::size_t joins = 1;
};

/// What is drawn, in id order.
struct Picture
{
    std::vector<PictureNode> nodes{};
    std::vector<PictureEdge> edges{};
    /// How many subjects the model has in all.
    std::size_t subjects = 0;
};

/// Returns a join as answers have it.
[[nodiscard]] AnswerJoin ToAnswerJoin(const ModelGraph& model, const ModelJoin& join);

/// Returns the edge of a join, turned so that a "many" end comes first where the other is none.
[[nodiscard]] PictureEdge MakePictureEdge(const AnswerJoin& join,
                                          const std::map<amd_id, std::size_t>& positions);

/// The facts and dimensions of a picture, by the joins that are not drawn too: a dimension is the
/// to-one end of a many-to-one join, a fact only the other.
class FactMarks
{
public:
    void Add(const AnswerJoin& join);
    [[nodiscard]] PictureNode::EKind KindOf(const amd_id& subject) const;

private:
    enum class EMark : std::uint8_t
    {
        Fact,
        Dimension,
    };
    std::map<amd_id, EMark> mMarks;
};

} // namespace qe::tool

#endif
