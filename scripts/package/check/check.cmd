@echo off
rem Runs the tests that do no harm on this machine, says which ones it leaves out and why, and leaves one report.
rem Which they are, and what the groups mean, stands in tests.txt. Each runs in a process of its own, which is ended
rem after TARNHD_TEST_SECONDS.
rem It ends with 0: all that ran have passed; 1: some have not, or none ran; 3: there is no report.
setlocal EnableExtensions DisableDelayedExpansion
rem Not cd, which doesn't go to a folder of another machine.
pushd "%~dp0" || exit /b 3
set "report=%~dp0report.txt"
call :check
popd
exit /b %result%

:check
set "product=HKLM\SOFTWARE\Vantorix"
if "%TARNHD_TEST_SECONDS%"=="" set "TARNHD_TEST_SECONDS=300"
set /a passed=0, failed=0, skipped=0, result=3

rem An old one that stays would look like that of this run.
del /f "%report%" >nul 2>&1
if exist "%report%" goto no_report
((echo tarnhd @version@, tests on this machine) >"%report%") 2>nul
if not exist "%report%" goto no_report
ver >>"%report%" 2>&1
>>"%report%" echo %DATE% %TIME%, %PROCESSOR_ARCHITECTURE% %PROCESSOR_ARCHITEW6432%, %NUMBER_OF_PROCESSORS% processors
chcp >>"%report%" 2>&1

rem What the programs would log for all of the machine goes here, and is gone at the end. Another check has its own.
set "scratch=%TEMP%\tarnhd-check-%RANDOM%%RANDOM%"
set "ProgramData=%scratch%"
set "ALLUSERSPROFILE=%scratch%"
mkdir "%scratch%"
rem Windows takes programs with "patch", "update" or "install" in their names for ones that need an administrator.
set "__COMPAT_LAYER=RunAsInvoker"

call :ask_for_machine
for /f "usebackq eol=# tokens=1,2*" %%a in ("tests.txt") do if not "%%b"=="" call :%%a %%b "%%c"
if "%machine%"=="" reg delete %product% /f /reg:32 >nul 2>&1
rmdir /s /q "%scratch%"

set /a result=0
if %failed% gtr 0 set /a result=1
if %passed% equ 0 set /a result=1
call :say ""
call :say "%passed% tests passed, %failed% failed, %skipped% tests or programs were left out"
echo The report is "%report%"
exit /b

:no_report
echo The report cannot be written to this folder: unpack the archive where you may write.
exit /b

rem Sets "machine" to the reason why nothing may be changed here; empty: all may be.
:ask_for_machine
set "machine=the product is installed here, and the test would change its registry key %product%"
reg query %product% /reg:32 >nul 2>&1
if errorlevel 1 goto make_key
rem One that an earlier check was stopped over is ours.
reg query %product% /reg:32 /v MadeByCheck >nul 2>&1
if errorlevel 1 exit /b
:make_key
set "machine=only an administrator may run it"
reg add %product% /v MadeByCheck /d 1 /f /reg:32 >nul 2>&1
if errorlevel 1 exit /b
set "machine="
exit /b

:anywhere
call :run %1 %2
exit /b

:machine
if "%machine%"=="" (call :run %1 %2) else call :skip %1 "%machine%"
exit /b

:never
call :skip %1 %2
exit /b

:skip
set /a skipped+=1
call :say ""
call :say "== %1 is left out: %~2"
exit /b

:run
set "program=%1"
set "filter=%~2"
if "%filter%"=="" set "filter=*"
call :say ""
call :say "== %1 %~2"
set "case="
for /f "delims=" %%l in ('bin\%program%.exe --gtest_list_tests "--gtest_filter=%filter%"') do call :listed "%%l"
if not "%case%"=="" exit /b
set /a failed+=1
call :say "FAILED: it has no such tests, or does not start"
exit /b

rem A suite's name, or behind two blanks that of one of its tests.
:listed
set "line=%~1"
if "%line:~0,2%"=="  " goto test
set "suite=%line%"
exit /b
:test
for /f "tokens=1" %%c in ("%line%") do set "case=%suite%%%c"
bin\%program%.exe --gtest_brief=1 --gtest_color=no "--gtest_filter=%case%" >"%scratch%\output.txt" 2>&1 <nul
set "code=%errorlevel%"
if not exist "%scratch%\output.txt" set "code=no output"
if not "%code%"=="0" goto test_failed
findstr /c:"  SKIPPED " "%scratch%\output.txt" >nul 2>&1
if not errorlevel 1 goto test_skipped
set /a passed+=1
>>"%report%" echo passed: %case%
exit /b
:test_failed
set /a failed+=1
call :say "FAILED with %code%: %case%"
type "%scratch%\output.txt" >>"%report%"
exit /b
:test_skipped
set /a skipped+=1
call :say "left out by itself: %case%"
type "%scratch%\output.txt" >>"%report%"
exit /b

:say
echo.%~1
>>"%report%" echo.%~1
exit /b
