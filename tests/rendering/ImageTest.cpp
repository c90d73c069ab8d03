#include "rendering/Image.h"
#include "rendering/ImageManager.h"
#include "util/FileSystem.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

using rendering::ImageRGBA32;
using rendering::PixelRGBA;

namespace
{
class ImageFiles : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_dir = std::filesystem::temp_directory_path() /
                ("qlex_image_test_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
                 "_" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(m_dir);
    }
    void TearDown() override { std::filesystem::remove_all(m_dir); }

    std::string Write(const std::string& name, const std::vector<uint8_t>& bytes)
    {
        const std::string path = (m_dir / name).string();
        std::ofstream out(path, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        return path;
    }

    std::filesystem::path m_dir;
};

void Put16(std::vector<uint8_t>& out, unsigned v)
{
    out.push_back(uint8_t(v & 0xFF));
    out.push_back(uint8_t(v >> 8));
}
void Put32(std::vector<uint8_t>& out, unsigned v)
{
    Put16(out, v & 0xFFFF);
    Put16(out, v >> 16);
}

// A 2 by 2 uncompressed true-colour TGA, rows from the bottom, pixels in the file's BGRA order.
std::vector<uint8_t> Tga32(const PixelRGBA (&bottomUp)[4])
{
    std::vector<uint8_t> out = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    Put16(out, 2);
    Put16(out, 2);
    out.push_back(32);
    out.push_back(8); // eight alpha bits, origin at the bottom left
    for (const PixelRGBA& p : bottomUp)
    {
        out.push_back(p.z);
        out.push_back(p.y);
        out.push_back(p.x);
        out.push_back(p.w);
    }
    return out;
}

// A 2 by 2 24-bit BMP, rows from the bottom, each padded to four bytes.
std::vector<uint8_t> Bmp24(const PixelRGBA (&bottomUp)[4])
{
    std::vector<uint8_t> out = {'B', 'M'};
    const unsigned rowBytes = 8;
    Put32(out, 54 + 2 * rowBytes);
    Put32(out, 0);
    Put32(out, 54);
    Put32(out, 40);
    Put32(out, 2);
    Put32(out, 2);
    Put16(out, 1);
    Put16(out, 24);
    for (int i = 0; i < 6; ++i)
        Put32(out, 0);
    for (int row = 0; row < 2; ++row)
    {
        for (int x = 0; x < 2; ++x)
        {
            const PixelRGBA& p = bottomUp[row * 2 + x];
            out.push_back(p.z);
            out.push_back(p.y);
            out.push_back(p.x);
        }
        out.push_back(0);
        out.push_back(0);
    }
    return out;
}
} // namespace

TEST_F(ImageFiles, RawSideFollowsFromTheLengthAndRowsComeBottomFirst)
{
    std::vector<uint8_t> bytes(65536, 0);
    bytes[0] = 200;            // top left in the file
    bytes[255 * 256 + 3] = 99; // bottom row, x = 3
    ImageRGBA32 image;
    image.LoadFile(Write("alpha.raw", bytes));
    ASSERT_EQ(image.GetWidth(), 256u);
    ASSERT_EQ(image.GetHeight(), 256u);
    EXPECT_TRUE(image.HasAlpha());
    EXPECT_EQ(image(0, 255), PixelRGBA(255, 255, 255, 200));
    EXPECT_EQ(image(3, 0), PixelRGBA(255, 255, 255, 99));
    EXPECT_EQ(image(1, 1), PixelRGBA(255, 255, 255, 0));
}

TEST_F(ImageFiles, RawThatIsNotSquareFailsWithItsMessageAndEmptyIsNothing)
{
    ImageRGBA32 image;
    try
    {
        image.LoadFile(Write("odd.raw", std::vector<uint8_t>(65537, 1)));
        FAIL() << "no exception";
    }
    catch (FileReadException& e)
    {
        EXPECT_NE(std::string(e.what()).find("contained a non quadratic picture."), std::string::npos)
            << e.what();
    }
    ImageRGBA32 empty;
    empty.LoadFile(Write("empty.raw", {}));
    EXPECT_EQ(empty.GetWidth(), 0u);
    EXPECT_EQ(empty.GetHeight(), 0u);
}

TEST_F(ImageFiles, EnormousTruncatedAndForeignFilesAreRefusedWithTheirPath)
{
    const PixelRGBA grey(128, 128, 128, 255);
    const PixelRGBA pixels[4] = {grey, grey, grey, grey};
    // A picture whose header claims 60,000 by 60,000 pixels: refused by its size, whatever its decoder did.
    std::vector<uint8_t> huge = Bmp24(pixels);
    for (size_t at : {18u, 22u})
    {
        huge[at] = 0x60;
        huge[at + 1] = 0xEA;
        huge[at + 2] = 0;
        huge[at + 3] = 0;
    }
    std::vector<uint8_t> truncated = Bmp24(pixels);
    truncated.resize(30);
    std::vector<uint8_t> foreign(300);
    for (size_t i = 0; i < foreign.size(); ++i)
        foreign[i] = static_cast<uint8_t>(i * 37 + 11);
    for (const auto& [name, bytes] :
         {std::make_pair("huge.bmp", huge), std::make_pair("cut.bmp", truncated),
          std::make_pair("noise.png", foreign), std::make_pair("empty.tga", std::vector<uint8_t>())})
    {
        const std::string path = Write(name, bytes);
        try
        {
            ImageRGBA32 image;
            image.LoadFile(path);
            FAIL() << name << " loaded as " << image.GetWidth() << " x " << image.GetHeight();
        }
        catch (FileReadException& e)
        {
            EXPECT_NE(std::string(e.what()).find(path), std::string::npos) << e.what();
        }
        EXPECT_FALSE(rendering::TryLoad(path)) << name;
    }
    ImageRGBA32 raw;
    EXPECT_THROW(raw.LoadRAW(Write("wide.raw", {1, 2, 3}), ImageRGBA32::RAW_ALPHA, 100000, 100000),
                 FileReadException);
}

// The inputs kept from the image fuzzer: the first byte picks the kind of file the rest is read as.
TEST_F(ImageFiles, FuzzRegressionInputsLoadOrAreRefused)
{
    const char* source = std::getenv("QLEX_SOURCE");
    ASSERT_TRUE(source) << "QLEX_SOURCE names the source tree";
    const std::filesystem::path dir = std::filesystem::path(source) / "tests/fuzz_regressions/image_fuzzer";
    const char* const extensions[] = {".png", ".tga", ".bmp", ".jpg", ".raw"};
    size_t loaded = 0;
    size_t inputs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir))
    {
        std::ifstream file(entry.path(), std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        ASSERT_FALSE(bytes.empty()) << entry.path();
        const std::string name = "input" + std::string(extensions[bytes[0] % 5]);
        const rendering::ImageRGBA32Ptr image =
            rendering::TryLoad(Write(name, std::vector<uint8_t>(bytes.begin() + 1, bytes.end())));
        if (image)
        {
            EXPECT_LE(image->GetWidth() * image->GetHeight(), 8192u * 8192u) << entry.path();
            ++loaded;
        }
        ++inputs;
    }
    EXPECT_GT(inputs, loaded);
    EXPECT_GT(loaded, 0u);
}

TEST_F(ImageFiles, RawRgbIsOpaqueAndRawRgbaKeepsItsAlpha)
{
    ImageRGBA32 rgb;
    rgb.LoadRAW(Write("rgb.bin", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}), ImageRGBA32::RAW_RGB);
    ASSERT_EQ(rgb.GetWidth(), 2u);
    EXPECT_FALSE(rgb.HasAlpha());
    EXPECT_EQ(rgb(0, 1), PixelRGBA(1, 2, 3, 255)); // first in the file is the top left
    EXPECT_EQ(rgb(1, 0), PixelRGBA(10, 11, 12, 255));

    ImageRGBA32 rgba;
    rgba.LoadRAW(Write("rgba.bin", {1, 2, 3, 4}), ImageRGBA32::RAW_RGBA);
    EXPECT_TRUE(rgba.HasAlpha());
    EXPECT_EQ(rgba(0, 0), PixelRGBA(1, 2, 3, 4));

    ImageRGBA32 truncated;
    EXPECT_THROW(truncated.LoadRAW(Write("short.bin", {1, 2, 3}), ImageRGBA32::RAW_RGBA, 2, 2),
                 FileReadException);
}

TEST_F(ImageFiles, TgaWithAlphaComesOutInRgbaOrderBottomRowFirst)
{
    const PixelRGBA pixels[4] = {{255, 0, 0, 255}, {0, 255, 0, 128}, {0, 0, 255, 64}, {10, 20, 30, 40}};
    ImageRGBA32 image;
    image.LoadFile(Write("pic.tga", Tga32(pixels)));
    ASSERT_EQ(image.GetWidth(), 2u);
    EXPECT_TRUE(image.HasAlpha());
    EXPECT_EQ(image(0, 0), pixels[0]);
    EXPECT_EQ(image(1, 0), pixels[1]);
    EXPECT_EQ(image(0, 1), pixels[2]);
    EXPECT_EQ(image(1, 1), pixels[3]);
}

TEST_F(ImageFiles, TwentyFourBitPictureHasNoAlphaAndIsOpaque)
{
    const PixelRGBA pixels[4] = {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}, {10, 20, 30, 255}};
    ImageRGBA32 image;
    image.LoadFile(Write("pic.bmp", Bmp24(pixels)));
    EXPECT_FALSE(image.HasAlpha());
    EXPECT_EQ(image(0, 0), pixels[0]);
    EXPECT_EQ(image(1, 1), pixels[3]);
}

TEST(ImageManager, OneDecodedImageAnswersEverySpellingOfItsName)
{
    // The build stages our cloud pictures in the texture folder.
    rendering::ImageManager& manager = *rendering::ImageManager::GetInstancePtr();
    const rendering::ImageRGBA32Ptr byName = manager.Load("background/cloud0");
    ASSERT_TRUE(byName) << "cloud0 is not staged below " << util::FileSystem::GetInstancePtr()->TextureDir();
    EXPECT_EQ(manager.Load("background/cloud0.png"), byName);
    EXPECT_EQ(manager.Load(util::FileSystem::GetInstancePtr()->TextureDir() + "background/cloud0"), byName);
    EXPECT_EQ(manager.Load(util::FileSystem::GetInstancePtr()->TextureDir() + "background/cloud0.png"),
              byName);
    EXPECT_TRUE(byName->HasAlpha());
    EXPECT_EQ(byName->GetWidth(), 128u);
}

TEST(ImageManager, AMissingNameIsNullAndStaysMarked)
{
    rendering::ImageManager& manager = *rendering::ImageManager::GetInstancePtr();
    EXPECT_FALSE(manager.Load("nothing/like/this"));
    EXPECT_FALSE(manager.Load("nothing/like/this"));
}
