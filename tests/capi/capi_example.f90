! IF97 water from Fortran through ISO_C_BINDING and the C API: enthalpy and speed of sound of
! liquid water at 3 MPa and 300 K, against IAPWS R7-97(2012), Table 5, and a failure text.
program capi_example
    use, intrinsic :: iso_c_binding
    implicit none

    interface
        subroutine zentropia_setunits(unitset, massormole, propsymbol, propunit, errormsg, &
                                      errormsg_len) bind(C, name="zentropia_setunits")
            import :: c_char, c_int
            character(kind=c_char), dimension(*), intent(in) :: unitset, massormole, &
                                                                propsymbol, propunit
            character(kind=c_char), dimension(*), intent(inout) :: errormsg
            integer(c_int), value :: errormsg_len
        end subroutine
        subroutine zentropia_setfluid(model, in_ncmp, in_cmp, in_cmp_len, in_cnc, in_cnc_len, &
                                      errormsg, errormsg_len) bind(C, name="zentropia_setfluid")
            import :: c_char, c_int, c_ptr, c_double
            character(kind=c_char), dimension(*), intent(in) :: model
            integer(c_int), value :: in_ncmp, in_cmp_len, in_cnc_len
            type(c_ptr), dimension(*), intent(in) :: in_cmp
            real(c_double), dimension(*), intent(in) :: in_cnc
            character(kind=c_char), dimension(*), intent(inout) :: errormsg
            integer(c_int), value :: errormsg_len
        end subroutine
        function zentropia_calcprop(propspec, inputspec, input1, input2, errormsg, &
                                    errormsg_len) result(value) bind(C, name="zentropia_calcprop")
            import :: c_char, c_int, c_double
            character(kind=c_char), dimension(*), intent(in) :: propspec, inputspec
            real(c_double), value :: input1, input2
            character(kind=c_char), dimension(*), intent(inout) :: errormsg
            integer(c_int), value :: errormsg_len
            real(c_double) :: value
        end function
    end interface

    character(kind=c_char, len=128) :: errormsg
    character(kind=c_char, len=6), target :: water = "water" // c_null_char
    type(c_ptr) :: components(1)
    real(c_double) :: h, w

    call zentropia_setunits("SI" // c_null_char, "PerMass" // c_null_char, c_null_char, &
                            c_null_char, errormsg, len(errormsg))
    call expect(errormsg, "No errors")

    components(1) = c_loc(water)
    errormsg = "No errors" // c_null_char ! setfluid reads errormsg on entry
    call zentropia_setfluid("IF97" // c_null_char, 1, components, 1, [1.0_c_double], 1, &
                            errormsg, len(errormsg))
    call expect(errormsg, "Same fluid")

    h = zentropia_calcprop("h" // c_null_char, "PT" // c_null_char, 3.0e6_c_double, &
                           300.0_c_double, errormsg, len(errormsg))
    call expect(errormsg, "No errors")
    w = zentropia_calcprop("soundspeed" // c_null_char, "PT" // c_null_char, 3.0e6_c_double, &
                           300.0_c_double, errormsg, len(errormsg))
    print '(a, f12.6, a, f12.5, a)', "water at 3 MPa, 300 K: h =", h / 1000, " kJ/kg, w =", w, &
        " m/s"
    if (abs(h / 115331.273_c_double - 1) > 1e-8_c_double) error stop "h differs from IAPWS-IF97"
    if (abs(w / 1507.73921_c_double - 1) > 1e-8_c_double) error stop "w differs from IAPWS-IF97"

    h = zentropia_calcprop("h" // c_null_char, "PT" // c_null_char, -1.0_c_double, &
                           300.0_c_double, errormsg, len(errormsg))
    if (index(errormsg, "Error in IF97") /= 1) error stop "a negative pressure was not refused"
    print '(a)', "negative pressure: " // c_text(errormsg)

contains

    ! the text of a NUL-terminated C buffer
    function c_text(buffer) result(text)
        character(kind=c_char, len=*), intent(in) :: buffer
        character(len=:), allocatable :: text
        integer :: n
        n = index(buffer, c_null_char) - 1
        if (n < 0) n = len(buffer)
        text = buffer(1:n)
    end function

    subroutine expect(buffer, want)
        character(kind=c_char, len=*), intent(in) :: buffer
        character(len=*), intent(in) :: want
        if (c_text(buffer) /= want) then
            print '(a)', "unexpected errormsg: " // c_text(buffer)
            error stop 1
        end if
    end subroutine

end program capi_example
