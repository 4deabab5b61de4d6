Option Explicit
' The number of starts, kept in the internal EEPROM: it survives a reset,
' a power cut and a new download.

Public Persistent Starts As Integer

Public Sub CountStart()
    ' A new chip's erased EEPROM reads -1.
    If Starts < 0 Then Starts = 0
    If Starts < 32767 Then Starts = Starts + 1
End Sub
