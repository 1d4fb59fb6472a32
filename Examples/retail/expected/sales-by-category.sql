SELECT category.category_name, sum(sales.amount) AS amount
FROM sales
JOIN product ON sales.product_key = product.product_key
JOIN subcategory ON product.subcategory_key = subcategory.subcategory_key
JOIN category ON subcategory.category_key = category.category_key
GROUP BY category.category_name
ORDER BY category.category_name;
