#pragma once

#include "rendering/Texture.h"
#include "util/HashMap.h"
#include "util/Singleton.h"

#include <string>
#include <utility>
#include <vector>

namespace rendering
{

// Shares textures by name (or source image) and format, so that any number of users hold one GL texture.
class TextureManager : public util::Pointee, public util::Singleton<TextureManager>
{
public:
    using NamePair = std::pair<std::string, Texture::ImageType>;
    using ImagePair = std::pair<const AbstractImage*, Texture::ImageType>;
    using TextureMentorPtr = util::SharedPtr<util::Mentor<Texture>>;

    struct ImagePairHasher
    {
        uint32_t operator()(const NamePair& key) const;
        uint32_t operator()(const ImagePair& key) const;
    };

    // The missing texture's stand-in is set up here: the checkerboard.
    TextureManager();
    ~TextureManager() override;

    TextureProxy Load(util::String name, Texture::ImageType type);
    TextureProxy Load(ImageRGBA32Ptr image, Texture::ImageType type);
    TextureProxy Load(ImageFloatPtr image, Texture::ImageType type);

    // Registers every image file under the texture, language and fonts folders, so that they load with
    // the rest of the resources.
    void Prefetch();
    void PrefetchFiles(const std::string& dir, const std::vector<std::string>& files);

    // The format the prefetch uses, and the usual one for pictures: RGBA, mipmapped, clamped, linear.
    static Texture::ImageType DefaultImageType();

private:
    void Traverse(const std::string& relativeDir);

    util::HashMap<NamePair, TextureMentorPtr, ImagePairHasher> m_byName;
    util::HashMap<ImagePair, TextureMentorPtr, ImagePairHasher> m_byImage;
};

// Loaders for the mentors. Null when the image can't be had.
Texture* TextureFromImageManager(const std::string& name, const Texture::ImageType& type);
Texture* TextureFromImage(ImageRGBA32Ptr image, const Texture::ImageType& type);
Texture* TextureFromImageFloat(ImageFloatPtr image, const Texture::ImageType& type);

} // namespace rendering
