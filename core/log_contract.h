// SPDX-License-Identifier: MIT
#pragma once

/// The words and numbers that logs and error handling share: error keys, which are thrown as QString by value, and the
/// numbers of the log lines outside the readers' tables of failures. Users' logs contain them, so none ever changes.
namespace zr
{

/// Error keys. A key names the kind of failure; the line that was logged before it names the failure itself.
namespace key
{

// The kinds that a slice reader handles.
constexpr char kOpenFile[] = "openFileErr";
constexpr char kReadShort[] = "fileReadLess";
constexpr char kPreview[] = "filePrevErr";

// Of the model loaders.
constexpr char kModelOpen[] = "fileOpenErr";
constexpr char kModelNotOpened[] = "fileCanNotOpen";
constexpr char kModelTooLarge[] = "fileIsCanNoRender";
constexpr char kMemoryOut[] = "memOut";
constexpr char kModelSize[] = "modelSizeIsErr";
constexpr char kSlcHead[] = "fileHeadErr";
constexpr char kSlcSize[] = "fileIsErr";
constexpr char kSlcAdd[] = "fileAddErr";
constexpr char kSlcMemoryOut[] = "memOutErr";

// Of the renderer.
constexpr char kNoContext[] = "not has opengl context";
constexpr char kNoFunctions[] = "openFunNotVaild";
constexpr char kContext[] = "openGLContextErr";
constexpr char kVertexShader[] = "vertexShaderErr";
constexpr char kGeometryShader[] = "geometryShaderErr";
constexpr char kFragmentShader[] = "fragmentShaderErr";
constexpr char kShaderLink[] = "shaderLinkErr";
constexpr char kShaderBind[] = "shaderBindErr";
constexpr char kNothingToRender[] = "renderListZero";
constexpr char kBufferBind[] = "vboBindErrInRender";

// Of the job.
constexpr char kNotSupported[] = "fileIsNotSupport";
constexpr char kNoPicture[] = "prevImageGetErr";
constexpr char kNotSaved[] = "pushDataErr";

} // namespace key

/// Numbers of log lines. Two folders may use the same one.
namespace line
{

// The extractor and the start of Qt.
constexpr int kLoad = 37;
constexpr int kApplicationStarted = 61;
constexpr int kApplicationReady = 63;

// The job, and the cache for it.
constexpr int kNotSupported = 60;
constexpr int kNoPicture = 65;
constexpr int kNotSaved = 69;
constexpr int kJobFailed = 73;
constexpr int kNoEntry = 84;
constexpr int kStaleEntry = 106;

// The database.
constexpr int kTableNotMade = 106;
constexpr int kDatabaseNotOpen = 110;

// The reader contract.
constexpr int kCaughtKey = 29;

// The renderer, in the order of its work.
constexpr int kProbeWithoutContext = 46;
constexpr int kRendererNotMade = 115;
constexpr int kContextNotValid = 200;
constexpr int kSurfaceNotValid = 208;
constexpr int kNoFunctions = 238;
constexpr int kContextFailed = 241;
constexpr int kContextFailedThrow = 242;
constexpr int kGeometryVertexRetry = 256;
constexpr int kGeometryVertexFailed = 260;
constexpr int kGeometryFailed = 266;
constexpr int kGeometryFragmentFailed = 272;
constexpr int kPlainVertexFailed = 278;
constexpr int kPlainFragmentFailed = 284;
constexpr int kLinkFailed = 296;
constexpr int kBindFailed = 302;
constexpr int kNothingToDraw = 184;
constexpr int kRenderFailed = 190;
constexpr int kBufferNotBound = 363;

} // namespace line

} // namespace zr
