Option Explicit
' Counts up, ten times a second. Open Project, Watch Window while it runs
' and watch Count grow; each start is counted in the chip's EEPROM
' (see starts.bas) and told on the monitor port.

Dim Count As Long

Sub Main()
    CountStart
    Debug.Print "Start number"; Starts
    Do
        Count = Count + 1
        If Count Mod 100 = 0 Then Debug.Print "Count"; Count
        Sleep 100
    Loop
End Sub
