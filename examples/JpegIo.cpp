#include "PictureCodec.h"

#include <csetjmp>

// <cstdio> has to come before these.
#include <jpeglib.h>
#include <jerror.h>

namespace orvik::examples::codec {
namespace {

/// Everything with a destructor is a member or belongs to the caller, so that longjmp() out of the codec skips no
/// destructor.
class JpegReader
{
public:
    JpegReader()
    {
        m_codec.err = jpeg_std_error(&m_errors);
        m_codec.client_data = this;
        m_errors.error_exit = onError;
        m_errors.emit_message = onMessage;
    }

    ~JpegReader() { jpeg_destroy_decompress(&m_codec); }

    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    Picture read(std::FILE* file, std::uint64_t fileBytes)
    {
        Picture picture;
        if (!decode(file, fileBytes, picture))
            m_message.refuse();
        return picture;
    }

private:
    static void onError(j_common_ptr codec)
    {
        auto* self = static_cast<JpegReader*>(codec->client_data);
        char text[JMSG_LENGTH_MAX] = {};
        codec->err->format_message(codec, text);
        self->m_message.keep(text);
        std::longjmp(self->m_jump, 1);
    }

    /// The codec fills missing or damaged data with grey and warns. Only the two warnings about how the header is
    /// written leave the samples sound.
    static void onMessage(j_common_ptr codec, int level)
    {
        const int code = codec->err->msg_code;
        if (level < 0 && code != JWRN_JFIF_MAJOR && code != JWRN_ADOBE_XFORM)
            onError(codec);
    }

    bool decode(std::FILE* file, std::uint64_t fileBytes, Picture& picture)
    {
        if (setjmp(m_jump) != 0)
            return false;
        jpeg_create_decompress(&m_codec);
        jpeg_stdio_src(&m_codec, file);
        jpeg_read_header(&m_codec, TRUE);
        picture.sizeX = m_codec.image_width;
        picture.sizeY = m_codec.image_height;
        const std::size_t bytes = checkedBytes(picture.sizeX, picture.sizeY, 1);
        if (!m_codec.arith_code) {
            // A Huffman code takes at least a bit for each block, and the coarsest blocks cover 32 x 32 samples.
            requireRoomFor(bytes / (8ul * 32 * 32), fileBytes, picture.sizeX, picture.sizeY);
        }
        // Where it comes in several scans, the codec keeps 16 bits for each sample of each colour.
        const std::size_t kept = jpeg_has_multiple_scans(&m_codec) ? 2 * bytes * m_codec.num_components : 0;
        requireMemoryFor(bytes + kept, availableMemory(), picture.sizeX, picture.sizeY);
        m_codec.out_color_space = JCS_GRAYSCALE;
        jpeg_start_decompress(&m_codec);
        picture.samples.reserve(bytes);
        while (m_codec.output_scanline < m_codec.output_height) {
            picture.samples.resize(picture.samples.size() + picture.sizeX);
            JSAMPROW row = picture.samples.data() + picture.samples.size() - picture.sizeX;
            jpeg_read_scanlines(&m_codec, &row, 1);
        }
        jpeg_finish_decompress(&m_codec);
        return true;
    }

    CodecMessage m_message;
    jpeg_error_mgr m_errors = {};
    jpeg_decompress_struct m_codec = {};
    std::jmp_buf m_jump;
};

}  // namespace

Picture readJpeg(std::FILE* file, std::uint64_t fileBytes)
{
    return JpegReader().read(file, fileBytes);
}

}  // namespace orvik::examples::codec
