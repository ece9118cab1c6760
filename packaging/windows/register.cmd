@echo off
rem register.cmd [/q]: registers the ZRThumbnail.dll beside this file as the thumbnail handler of 3D-printing files, for
rem all users. register.cmd /u undoes that. With /q it does not wait for a key at the end.
setlocal DisableDelayedExpansion
set "self=%~f0"
set "server=%~dp0ZRThumbnail.dll"
set "undo="
set "wait=yes"
set "elevated="
for %%o in (%*) do (
    if /i "%%o"=="/u" set "undo=/u"
    if /i "%%o"=="/q" set "wait="
    if /i "%%o"=="/elevated" set "elevated=yes"
)

if not "%PROCESSOR_ARCHITECTURE%"=="AMD64" if not "%PROCESSOR_ARCHITEW6432%"=="AMD64" (
    echo ZRThumbnail needs 64-bit Windows on an x64 processor.
    goto failed
)
rem Where a 32-bit command prompt sees the 64-bit programs.
set "programs=%SystemRoot%\System32"
if defined PROCESSOR_ARCHITEW6432 set "programs=%SystemRoot%\Sysnative"

if not exist "%server%" (
    echo There is no ZRThumbnail.dll beside this file. Unpack the whole zip first.
    goto failed
)
"%programs%\regsvr32.exe" /s %undo% "%server%"
if not errorlevel 1 goto done
if not defined elevated goto elevate
echo Windows refuses. "zrthumb --check" in this folder may tell why.
goto failed

rem Again, with the rights of an administrator, in a window of its own.
:elevate
echo Windows asks for an administrator's permission ...
set "options=/elevated %*"
powershell -NoProfile -Command "Start-Process -Verb RunAs $env:ComSpec ('/c \"\"' + $env:self + '\" ' + $env:options + '\"')"
if errorlevel 1 goto failed
exit /b 0

:done
if defined undo (echo ZRThumbnail is not registered any more.) else (echo ZRThumbnail is registered.)
if defined wait pause
exit /b 0

:failed
if defined wait pause
exit /b 1
