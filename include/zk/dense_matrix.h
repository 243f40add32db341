/*
 * Matrices of up to 20 by 20: arithmetic, vectors, transforms, decompositions.
 *
 * A Mat is passed and returned by value. No function here keeps anything between calls or writes a global; only
 * directCalculateDetA allocates. Every function may run on any thread that has the stack for it: a Mat takes 1.6 KB,
 * vec_angle_axis_diff some 35 KB, and mat_svd, the functions that use it, and merge_sort up to some 100 KB. Arithmetic,
 * sums included, is in single precision unless a comment says otherwise.
 *
 * The counts are trusted: a count below 1 leaves the block empty and one beyond the record reaches its end. Elements of
 * a new Mat outside its used block are 0. Where sizes have to match and do not, the result is the empty Mat, with both
 * counts 0, and no status reports it. A vector, below Vec, is a Mat with cols = 1, its elements in column 0.
 */
#ifndef ZK_DENSE_MATRIX_H
#define ZK_DENSE_MATRIX_H

#include <stddef.h>
#include <stdint.h>

#include "zk/transform_types.h"

/* A matrix of up to 20 by 20, row major; the row stride is always 20. */
typedef struct Mat {
    int32_t rows;
    int32_t cols;
    float m[20][20];
} Mat;

ZK_STATIC_ASSERT(sizeof(Mat) == 1608 && offsetof(Mat, m) == 8, "layout of Mat");

/* ---------------------------------------------------------------------------------------------------------------------
 * Making and reaching in. Row and column numbers count from 1; one outside 1 to 20 changes nothing, or reads zeros.
 * ------------------------------------------------------------------------------------------------------------------ */

/* The rows by cols matrix of zeros. */
ZK_API Mat mat_init(int rows, int cols);
ZK_API Mat mat_zeros(int rows, int cols);

/* Ones on the diagonal up to the smaller count, zeros elsewhere. */
ZK_API Mat mat_eye(int rows, int cols);

/* The vector of n zeros. */
ZK_API Mat vec_init(int n);
ZK_API Mat vec_zeros(int n);

/* Fills the block of A in place from rows times cols values, row by row. */
ZK_API void mat_set_value(Mat* A, const float* values);

/* Row i as a 1 by cols Mat; column j as a Vec. */
ZK_API Mat mat_get_Mrow_i(int i, Mat A);
ZK_API Mat mat_get_Mcol_j(int j, Mat A);

/* In place: row i gets the v.cols elements of v's first row; column j gets the v.rows elements of v's first column. */
ZK_API void mat_set_Mrow_i(int i, Mat* A, Mat v);
ZK_API void mat_set_Mcol_j(int j, Mat* A, Mat v);

/* In place: exchanges two rows over cols elements; two columns over rows elements. */
ZK_API void swap_row(Mat* A, int i, int j);
ZK_API void swap_col(Mat* A, int i, int j);

/* Writes "Mat = " and the rows to standard output. */
ZK_API void mat_print(Mat A);

/* ---------------------------------------------------------------------------------------------------------------------
 * Arithmetic
 * ------------------------------------------------------------------------------------------------------------------ */

/* A + B and A - B; empty when either count differs. */
ZK_API Mat mat_add(Mat A, Mat B);
ZK_API Mat mat_sub(Mat A, Mat B);

/* k A */
ZK_API Mat mat_kM(float k, Mat A);

/* A B; empty when A's cols is not B's rows. */
ZK_API Mat mat_mult(Mat A, Mat B);

/* The transpose. */
ZK_API Mat mat_T(Mat A);

/* The sum of the diagonal, up to the smaller count. */
ZK_API float mat_trace(Mat A);

/*
 * A row or column of more than one element becomes the square diagonal matrix of it; a matrix with both counts above 1
 * the Vec of its diagonal. For anything else, a 1 by 1 included, the empty Mat.
 */
ZK_API Mat mat_diag(Mat A);

/* The largest absolute value, 0 for an empty block; the smallest one below 1e10, and 1e10 for an empty block. */
ZK_API float mat_find_abs_max(Mat A);
ZK_API float mat_find_abs_min(Mat A);

/* 1 when A equals its transpose exactly (a NaN never does), 0 when not, -1 when A is not square. */
ZK_API int mat_is_hermitian(Mat A);

/* 1 when the two whole records are equal byte for byte, elements outside the blocks included, else 0. */
ZK_API int mat_is_equal(Mat A, Mat B);

/* ---------------------------------------------------------------------------------------------------------------------
 * Vectors. The length is a's rows unless a comment says otherwise, and b's is not read. A returned Vec is a copy of a
 * with column 0 replaced.
 * ------------------------------------------------------------------------------------------------------------------ */

ZK_API Mat vec_add(Mat a, Mat b);
ZK_API Mat vec_sub(Mat a, Mat b);
ZK_API Mat vec_minus(Mat a);
ZK_API Mat vec_kV(float k, Mat a);

/* Each element plus k. */
ZK_API Mat vec_add_scalar(float k, Mat a);

/* The Euclidean norm down column 0, over as many rows as the larger of the two counts; 0 when that is below 1. */
ZK_API float vec_norm2(Mat a);

/*
 * The largest absolute value of column 0 without its last element, the length as for vec_norm2: of (1, 2, 3) it is 2,
 * of a single element 0.
 */
ZK_API float vec_normInf(Mat a);

/* The sum of products down column 0, the length as for vec_norm2. */
ZK_API float vec_dot(Mat a, Mat b);

/* 1 when vec_norm2 is below 1e-16, else 0. */
ZK_API int vec_is_zeros(Mat a);

/* The cross product a x b of two 3-element vectors, a new Vec. */
ZK_API Mat vec3x3_cross(Mat a, Mat b);

/* The skew matrix S of a 3-element vector a, with S v = a x v; and back, from the elements m21, m02, m10. */
ZK_API Mat vec_to_skew(Mat a);
ZK_API Mat skew_to_vec(Mat S);

/* The vector of the skew part of R: half of m21 - m12, m02 - m20, m10 - m01. */
ZK_API Mat vec_vex(Mat R);

/* out = a x b on arrays of three; out may be a or b. */
ZK_API void array_cross(const float* a, const float* b, float* out);

/*
 * Sorts the n values of a in place, stable: order 0 ascending, any other descending. n is at most 2000; a larger one
 * leaves a as it is. Method: top-down merge sort.
 */
ZK_API void merge_sort(int order, float* a, int n);

/* ---------------------------------------------------------------------------------------------------------------------
 * Transforms in a Mat. Lengths are metres, angles radians.
 * ------------------------------------------------------------------------------------------------------------------ */

/* The 3 by 3 rotation block of a transform; its translation as a 3-element Vec. */
ZK_API Mat mat_T2R(Mat T);
ZK_API Mat mat_T2p(Mat T);

/* T itself: despite the name, no inverse is computed. Use matrix_inv_coordinate_system (zk/numeric.h). */
ZK_API Mat mat_homogen_trans_inv(Mat T);

/*
 * The motion from T1 to T2 as a 6-element Vec, translation first, in the frame of T1, for small differences: the
 * rotation part is the vector of the skew part of R1' R2, with no arc function.
 */
ZK_API Mat vec_Tdiff(Mat T1, Mat T2);

/*
 * The difference of T2 from T1 as a 6-element Vec in the base frame, translation first, then the axis of R2 R1' times
 * its angle. A half turn is read from the diagonal: right for turns about the coordinate axes.
 * Method: Sugihara, Solvability-Unconcerned Inverse Kinematics by the Levenberg-Marquardt Method, IEEE Transactions on
 * Robotics 27 (2011).
 */
ZK_API Mat vec_angle_axis_diff(Mat T1, Mat T2);

/* ---------------------------------------------------------------------------------------------------------------------
 * Conversions. The counts are kept, cut to the width of the record; of the block as much is copied as both records
 * hold.
 * ------------------------------------------------------------------------------------------------------------------ */

ZK_API Mat matrix_to_mat(Matrix A);
ZK_API Matrix mat_to_matrix(Mat A);
ZK_API Mat matrix_more_to_mat(Matrix7 A);
ZK_API Matrix7 mat_to_matrix_more(Mat A);

/* ---------------------------------------------------------------------------------------------------------------------
 * Determinant, inverse, rank. Note the status conventions: they differ from function to function.
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * The determinant, by elimination without pivoting; 1 for an empty block. When A is not square, +infinity and a message
 * on standard error. At a pivot of exactly 0 the half-reduced record goes to directCalculateDetA: right for the first
 * pivot, and for a later one a different number from the determinant.
 */
ZK_API float mat_det(Mat A);

/*
 * The determinant of an n by n matrix by Laplace expansion along the first row; 0 when A is empty or not square. Takes
 * n 2^n steps and allocates 4 * 2^n bytes, 4 MB for 20 by 20; NaN when there is no memory for that.
 */
ZK_API float directCalculateDetA(Mat A);

/*
 * A = L U by Doolittle's form without pivoting: L rows by rows with a unit diagonal, U the size of A, both always
 * stored, not finite after a zero pivot. The last column of a U with more rows than columns is left as it is. Returns 0
 * when tol is above the absolute value of U's last element, else 1.
 */
ZK_API int mat_lu(Mat* L, Mat* U, Mat A, float tol);

/*
 * The inverse of A in *out, by Gauss-Jordan exchange in place with complete pivoting. Returns 1 when done, 0 when A is
 * not square, -1 when a quotient is not finite; *out changes only with 1. There is no tolerance: a nearly singular
 * matrix is inverted to large elements.
 */
ZK_API int mat_inv(Mat* out, Mat A);

/*
 * The rank, by elimination with partial pivoting, up to the first column without a pivot above tol: later columns do
 * not count. With flag 1 it is that of the transpose.
 */
ZK_API int mat_rank(int flag, Mat A, float tol);

/* ---------------------------------------------------------------------------------------------------------------------
 * Orthogonal decompositions. Meant for small matrices with at least two rows and two columns, as mat_diag is.
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * A = Q R by Householder reflections, Q rows by rows, R the size of A. The sign of a reflection is three-valued: a
 * column whose first element is exactly 0 is not cleared, and one of zeros, the last of a singular square matrix
 * included, returns NaN.
 * Method: Golub and Van Loan, Matrix Computations, section 5.2.
 */
ZK_API void mat_qr(Mat* Q, Mat* R, Mat A);

/*
 * The absolute eigenvalues of A as a Vec, unsorted, by at most max_iter (1 or more) rounds of unshifted QR iteration,
 * which ends when no element of R off the diagonal reaches tol. Right for symmetric positive matrices. Returns 1, or 0
 * when A is not square and *values stays.
 */
ZK_API int mat_eig(int max_iter, Mat* values, Mat A, float tol);

/*
 * The eigenvalues of a symmetric A as a Vec, unsorted, and its eigenvectors as the columns of *vectors, by the same
 * iteration. The sign of a value v is decided by the determinant of A - v I. Returns 0, or -1 when A is square and not
 * symmetric, and both outputs stay; a matrix that is not square is not refused.
 */
ZK_API int mat_hermitian_eig(int max_iter, Mat* values, Mat* vectors, Mat A, float tol);

/*
 * A = U S V' by the eigenvectors of A A' and A' A; the singular values on S's diagonal in the order of the iteration.
 *
 * Right to five digits, measured from 2 by 2 to 10 by 10, for a square matrix of full rank whose condition number is
 * 300 or less, whose largest singular value is 1 or less and whose singular values are at least 12 % apart. Beyond:
 *     equal or close singular values     wrong, since the iteration does not separate the vectors: an orthogonal matrix
 *                                        always, 10 % apart in most cases
 *     largest singular value of 10, 100  wrong in a quarter, in nearly all cases: a column of U changes sign where A v
 *                                        and s u differ by more than 0.00001, which rounding then reaches
 *     condition number of 1000, 10000    an error above 0.1 % in some cases, up to half of them
 *     less than full rank                three to four digits; NaN where one of the products is exactly singular
 *     not square                         NaN in about one case of twenty; a single row or column is nearly always wrong
 */
ZK_API void mat_svd(Mat* U, Mat* S, Mat* V, Mat A);

/*
 * The pseudo-inverse by the normal equations: A' inv(A A'), inv(A) or inv(A' A) A' by shape. When the product to invert
 * is singular, zeros replace the inverse, and no status reports it.
 */
ZK_API Mat mat_pinv(Mat A);

/* The pseudo-inverse by mat_svd; singular values of 0.00001 or less count as 0. */
ZK_API Mat mat_pinv_svd(Mat A);

/*
 * The condition number: the root of the first over the last eigenvalue of A' A in the order of the iteration, which
 * mostly has the largest first. 1 for a row; NaN where A' A is exactly singular, as for one row in five, and for a
 * column.
 */
ZK_API float mat_cond(Mat A);

#endif
