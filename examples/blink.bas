Option Explicit
' The KV-20's two LEDs blink in turn, twice a second, and every blink is
' told on the monitor port.

Sub Main()
    Dim Blinks As Long
    Do
        Blinks = Blinks + 1
        PutLed 1, True
        PutLed 2, False
        Debug.Print "Blink"; Blinks; ": LED 1 on"
        Sleep 500
        PutLed 1, False
        PutLed 2, True
        Sleep 500
    Loop
End Sub
