#include "tools/samples/sample_files.h"

#include "tools/samples/drawn_solids.h"
#include "tools/samples/fdg_bytes.h"
#include "tools/samples/gf_bytes.h"
#include "tools/samples/kestravo_bytes.h"
#include "tools/samples/obj_bytes.h"
#include "tools/samples/photons_bytes.h"
#include "tools/samples/slc_bytes.h"
#include "tools/samples/stl_bytes.h"
#include "tools/samples/svgx_bytes.h"
#include "tools/samples/vrx_bytes.h"

namespace zr::samples
{
namespace
{

QByteArray rookVrx(VrxParts::Layout layout, int width, int height)
{
    VrxParts parts;
    parts.layout = layout;
    parts.preview = runLengthPreview(drawSolid(Solid::Rook, width, height));
    return vrxBytes(parts);
}

QByteArray vaseKestravo(int width, int height)
{
    KestravoParts parts;
    parts.preview = runLengthPreview(drawSolid(Solid::Vase, width, height));
    return kestravoBytes(parts);
}

QByteArray pawnFdg()
{
    FdgParts parts;
    parts.preview = runLengthPreview(drawSolid(Solid::Pawn, 400, 400));
    return fdgBytes(parts);
}

QByteArray gobletGf()
{
    GfParts parts;
    parts.preview = channelWordPreview(drawSolid(Solid::Goblet, 290, 240));
    return gfBytes(parts);
}

QByteArray bottlePhotons()
{
    return photonsBytes(photonsPicture(drawSolid(Solid::Bottle, 224, 168)));
}

QByteArray spinningTopSvgx()
{
    SvgxParts parts;
    parts.bmp = bmpBytes(drawSolid(Solid::SpinningTop, 44, 44));
    return svgxBytes(parts);
}

QByteArray towerSlc()
{
    SlcParts parts;
    parts.layers = tower();
    return slcBytes(parts);
}

} // namespace

const std::vector<SampleFile>& sampleFiles()
{
    static const std::vector<SampleFile> files = {
        {"gear.stl", [] { return binaryStlBytes(gear()); }},
        {"vase-ascii.stl", [] { return asciiStlBytes(twistedVase()); }},
        {"duck.obj", [] { return objBytes(duck()); }},
        {"tower.slc", towerSlc},
        {"rook.vrx", [] { return rookVrx(VrxParts::Layout::Dlp, 400, 400); }},
        {"rook-wide.vrx", [] { return rookVrx(VrxParts::Layout::PreviewAt328, 290, 168); }},
        {"rook.vrxdlp", [] { return rookVrx(VrxParts::Layout::PreviewAt336, 300, 400); }},
        {"vase.kestravo", [] { return vaseKestravo(320, 400); }},
        {"vase-large.kestravo", [] { return vaseKestravo(640, 480); }},
        {"pawn.fdg", pawnFdg},
        {"goblet.gf", gobletGf},
        {"bottle.photons", bottlePhotons},
        {"spinning-top.svgx", spinningTopSvgx},
    };
    return files;
}

} // namespace zr::samples
